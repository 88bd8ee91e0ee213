// Walks the golden texts: what each model sends for which value, typed from its manual and not from its driver.
// tests/golden/README.md tells the lines.

#include "controller/SenseControllerFactory.h"
#include "drivers/GoldenPort.h"
#include "drivers/binary/IBaseIT1SenseController.h"
#include "drivers/visca/SONYEH6300SenseController.h"
#include "host/ModuleConfigure.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "support/OpenController.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

struct Line {
    std::string source; ///< file and line
    std::string verb;
    std::string rest;
    /// What it is about: a later line of another file about the same takes its place.
    std::string subject() const {
        std::istringstream words(rest);
        std::string id;
        std::string value;
        words >> id >> value;
        return verb + ' ' + id + (verb == "set" ? ' ' + value : "");
    }
    int id() const { return verb == "set" || verb == "get" || verb == "silent" ? std::stoi(rest) : -1; }
};

const std::filesystem::path Folder = SENSORCONTROL_SOURCE_DIR "/tests/golden";

std::vector<std::filesystem::path> goldenTexts() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(Folder))
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

std::string head(const std::string& text, const std::string& mark) { return text.substr(0, text.find(mark)); }

std::vector<std::string> split(const std::string& text, const std::string& mark) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + mark.size()) {
        end = text.find(mark, begin);
        parts.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
    }
    return parts;
}

/// A frame as it is written.
std::string frameOf(std::string text) {
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    if (text.starts_with('"'))
        return text.substr(1, text.size() - 2);
    std::istringstream bytes(text);
    std::string frame;
    for (std::string byte; bytes >> byte;)
        frame += static_cast<char>(std::stoi(byte, nullptr, 16));
    return frame;
}

/// The lines of a text, those of the one that it is the same as included.
std::vector<Line> linesOf(const std::filesystem::path& path, std::string& model) {
    std::ifstream file(path);
    std::vector<Line> lines;
    std::size_t taken = 0;
    int number = 0;
    for (std::string text; std::getline(file, text);) {
        ++number;
        if (text.empty() || text[0] == '#')
            continue;
        const std::size_t space = std::min(text.find(' '), text.size());
        Line line{path.filename().string() + ':' + std::to_string(number), text.substr(0, space),
                  space < text.size() ? text.substr(space + 1) : ""};
        if (line.verb == "model") {
            model = line.rest;
        } else if (line.verb == "same-as") {
            std::istringstream words(line.rest);
            std::string other;
            words >> other;
            lines = linesOf(Folder / other, other);
            for (std::string id; words >> id;)
                std::erase_if(lines, [&id](const Line& one) { return one.id() == std::stoi(id); });
            taken = lines.size();
        } else {
            const auto end = lines.begin() + static_cast<std::ptrdiff_t>(taken);
            const auto same = std::find_if(lines.begin(), end, [&line](const Line& one) {
                return (one.verb == "set" || one.verb == "get") && one.subject() == line.subject();
            });
            if (same != end)
                *same = line;
            else
                lines.push_back(line);
        }
    }
    return lines;
}

class Golden : public ::testing::TestWithParam<std::filesystem::path> {
protected:
    Golden() {
        sensorhost::ImagingStandIn::getInstance().reset();
        sensorhost::installClock(m_pClock);
    }
    ~Golden() override {
        m_pController = SafePointer<ISensorController>();
        sensorhost::installClock(nullptr);
        sensorhost::ImagingStandIn::getInstance().reset();
    }

    /// A controller whose port is open, without its background thread.
    void create() {
        m_pController = SafePointer<ISensorController>();
        m_pController = m_strModel == "SONYEH6300SenseController"
                            ? SafePointer<ISensorController>(new SONYEH6300SenseController)
                            : SenseControllerFactory::create(std::stoi(m_strModel));
        m_pController->setOperator(m_pPort, SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        m_pController->setObserver(&m_Log);
        // Where the main port has the other key, this is the second one.
        const std::string detail = "RS485=" + std::string(m_strModel == "9" ? GoldenPort::SecondDevice : "port") +
                                   ";RS232=port;isInfrared=0;TNF=1;GPIO=0,1,1;generation=" + m_strGeneration;
        ASSERT_EQ(
            c().initController(0, ModuleConfigure(c().getSensorType(), detail, "RS485=9600,8,1,0;RS232=9600,8,1,0")),
            1);
        c().*Peek::Status = ISensorController::InitSuccess;
        c().*Peek::Inited = true;
        m_pPort->takeSent();
    }

    ISensorController& c() { return *m_pController; }

    void store(const std::string& text) {
        for (SensorCache* cache : {(c().*Peek::CurrentCache).get(), (c().*Peek::LastCache).get()})
            cache->clear();
        for (const auto& [id, value] : pairs(text))
            (c().*Peek::LastCache)->setSensorValue(std::stoi(id), std::stoi(value));
    }

    void setMember(const std::string& name, int value) {
        if (name == "generation") {
            m_strGeneration = std::to_string(value);
            create();
        } else if (name == "inited") {
            c().*Peek::Inited = value != 0;
        } else if (name == "infrared") {
            c().*Peek::Infrared = value;
        } else if (name == "newInfrared") {
            c().*Peek::NewInfrared = value != 0;
        } else if (name == "dayNight") {
            c().*Peek::DayNight = value;
        } else if (name == "dayNightSetup") {
            struct It1 : IBaseIT1SenseController {
                static constexpr auto dayNightSetup() { return &It1::m_nDayNightSetup; }
            };
            dynamic_cast<IBaseIT1SenseController&>(c()).*It1::dayNightSetup() = value;
        } else if (name == "infraredMode") {
            c().*Peek::InfraredMode = value;
        } else {
            ADD_FAILURE() << "no member " << name;
        }
    }

    static std::vector<std::pair<std::string, std::string>> pairs(const std::string& text) {
        std::vector<std::pair<std::string, std::string>> all;
        std::istringstream words(text);
        for (std::string word; words >> word;)
            all.emplace_back(head(word, "="), word.substr(word.find('=') + 1));
        return all;
    }

    /// Makes a call and compares its result, its frames, its log and its console with what the line expects.
    void expect(const std::string& expected, const std::function<int(int&)>& call) {
        m_Log.take();
        m_pPort->takeSent();
        CaptureStdout();
        int value = 0;
        const int result = call(value);
        const std::string console = GetCapturedStdout();
        const std::string sent = m_pPort->takeSent();
        const std::string log = m_Log.take();

        if (expected.starts_with("-> ")) {
            const std::vector<std::string> parts = split(expected.substr(3), " asking ");
            const bool isRead = !parts[0].empty() && parts[0].find_first_not_of("-0123456789") == std::string::npos;
            EXPECT_EQ(result, 1) << log;
            if (isRead && m_bReads) {
                EXPECT_EQ(value, std::stoi(parts[0]));
                EXPECT_EQ(sent, parts.size() > 1 ? parts[1] : "");
            } else {
                EXPECT_EQ(sent, parts[0] == "nothing" ? "" : parts[0]);
            }
        } else if (expected.starts_with("unserved ")) {
            EXPECT_EQ(result, std::stoi(expected.substr(9)));
            EXPECT_EQ(sent, "");
        } else {
            EXPECT_TRUE(expected.starts_with("refused"));
            EXPECT_EQ(result, 0);
            std::string rest = expected.substr(7);
            if (rest.starts_with(" after ")) {
                // Frames of text have quotes as well: the messages then stand behind " saying ".
                const std::vector<std::string> parts = split(rest.substr(7), " saying ");
                EXPECT_EQ(sent, parts[0]);
                rest = parts.size() > 1 ? ' ' + parts[1] : "";
            } else if (!m_bReads) {
                EXPECT_EQ(sent, "");
            }
            expectTexts(rest, log, console);
        }
    }

    static void expectTexts(const std::string& texts, const std::string& log, const std::string& console) {
        std::string expectedLog;
        std::string kind;
        for (std::size_t at = 0; at < texts.size();) {
            if (texts[at] == '"') {
                const std::size_t end = texts.find('"', at + 1);
                const std::string text = texts.substr(at + 1, end - at - 1);
                if (kind == "console")
                    EXPECT_NE(console.find(text), std::string::npos) << "console without " << text;
                else
                    expectedLog += (expectedLog.empty() ? "" : " | ") + text;
                kind.clear();
                at = end + 1;
            } else {
                if (texts[at] != ' ')
                    kind += texts[at];
                ++at;
            }
        }
        EXPECT_EQ(log, expectedLog);
    }

    void walk(const Line& line) {
        const std::string& rest = line.rest;
        m_bReads = line.verb == "get";
        if (line.verb == "stored") {
            store(rest);
        } else if (line.verb == "member") {
            for (const auto& [name, value] : pairs(rest))
                setMember(name, std::stoi(value));
        } else if (line.verb == "reply") {
            const std::vector<std::string> frames = split(rest, " <- ");
            ASSERT_EQ(frames.size(), 2U);
            m_pPort->answer(frameOf(frames[0]), frameOf(frames[1]));
        } else if (line.verb == "caches") {
            for (const auto& [id, value] : pairs(rest))
                for (SensorCache* cache : {(c().*Peek::CurrentCache).get(), (c().*Peek::LastCache).get()}) {
                    int held = -1;
                    EXPECT_EQ(cache->getSensorValue(std::stoi(id), held), 1) << id;
                    EXPECT_EQ(held, std::stoi(value)) << id;
                }
        } else if (line.verb == "silent") {
            expectSilence(rest);
        } else if (line.verb == "run") {
            const std::string name = head(rest, " ");
            expect(rest.substr(name.size() + 1), [&](int&) { return runOperation(name); });
        } else {
            std::istringstream words(rest);
            int id = 0;
            int newValue = 0;
            words >> id;
            if (!m_bReads)
                words >> newValue;
            std::string expected;
            std::getline(words >> std::ws, expected);
            ASSERT_TRUE(m_bReads || line.verb == "set") << "no such line: " << line.verb;
            expect(expected, [&](int& value) {
                return m_bReads ? c().getParameterFromSensor(id, value) : c().setParameterToSensor(id, newValue);
            });
        }
    }

    /// A set that the block does not answer: fails, and the log ends with the text; without one, with the exchange's
    /// own lines.
    void expectSilence(const std::string& line) {
        std::istringstream words(line);
        int id = 0;
        int value = 0;
        std::string text;
        words >> id >> value;
        std::getline(words >> std::ws, text);
        m_Log.take();
        m_pPort->setSilent(true);
        EXPECT_EQ(c().setParameterToSensor(id, value), 0);
        m_pPort->setSilent(false);
        const std::string log = m_Log.take();
        if (text.empty())
            EXPECT_EQ(log.find("value is"), std::string::npos) << log;
        else
            EXPECT_TRUE(log.ends_with(" | " + text.substr(1, text.size() - 2))) << log;
    }

    int runOperation(const std::string& name) {
        using Operation = int (ISensorController::*)();
        static const std::map<std::string, Operation> Operations{
            {"turnPictureToDay", &ISensorController::turnPictureToDay},
            {"turnPictureToNight", &ISensorController::turnPictureToNight},
            {"enterAutoMode", &ISensorController::enterAutoMode},
            {"IrisUp", &ISensorController::IrisUp},
            {"IrisDown", &ISensorController::IrisDown},
            {"NotifySensorInitComplate", &ISensorController::NotifySensorInitComplate},
        };
        const auto operation = Operations.find(name);
        if (operation == Operations.end()) {
            ADD_FAILURE() << "no operation " << name;
            return -1;
        }
        return (c().*operation->second)();
    }

    TempRoot m_Root;
    LogKeeper m_Log; // outlives the controller
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>();
    SafePointer<GoldenPort> m_pPort{new GoldenPort};
    SafePointer<ISensorController> m_pController;
    std::string m_strModel;
    std::string m_strGeneration = "3";
    bool m_bReads = false; ///< the line reads a parameter
};

TEST_P(Golden, TheModelDoesWhatItsTextSays) {
    const std::vector<Line> lines = linesOf(GetParam(), m_strModel);
    ASSERT_GT(lines.size(), 50U);
    create();
    for (const Line& line : lines) {
        SCOPED_TRACE(line.source + ": " + line.verb + ' ' + line.rest);
        walk(line);
        if (HasFatalFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Models, Golden, ::testing::ValuesIn(goldenTexts()),
                         [](const auto& text) { return text.param.stem().string(); });

} // namespace
