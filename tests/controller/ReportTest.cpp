// What the library says of what it did: a report on request, and an observer that hears the rest.

#include "controller/ControllerObserver.h"
#include "controller/SensorControllerManager.h"
#include "host/DevicePaths.h"
#include "support/Cmd8100Bench.h"

#include <mutex>

#include <gmock/gmock.h>

using namespace sensorcontrol;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// Every event as a word or two; log lines only by their number.
class Notes final : public ControllerObserver {
public:
    void onDayNight(int status) override { add(status == 1 ? "day" : "night"); }
    void onScheme(int scheme) override { add("scheme " + std::to_string(scheme)); }
    void onPortLost() override { add("lost"); }
    void onPortBack() override { add("back"); }
    void onParameterNotTaken(const OperationReport::Parameter& parameter) override {
        add(std::to_string(parameter.id) + " " + toText(parameter.outcome) + ": " + parameter.reason);
    }
    void onProgress(const StartProgress& progress) override {
        const std::lock_guard lock(m_Mutex);
        m_Progress.push_back(progress);
    }
    void onLogLine(Log, const char*) override { ++m_nLogLines; }

    std::vector<std::string> take() {
        const std::lock_guard lock(m_Mutex);
        return std::exchange(m_Events, {});
    }

    std::vector<StartProgress> m_Progress;
    std::atomic<int> m_nLogLines{0};

private:
    void add(const std::string& event) {
        const std::lock_guard lock(m_Mutex);
        m_Events.push_back(event);
    }

    std::mutex m_Mutex;
    std::vector<std::string> m_Events;
};

class Reports : public Cmd8100Bench {
protected:
    ~Reports() override { destroy(); }

    OperationReport start() {
        create().setObserver(&m_Notes);
        return of([&] {
            controller().init(0, ModuleConfigure(16, "RS485=ttyS1;isInfrared=0;generation=3", "RS485=9600,8,1,0"),
                              VideoResolution(1920, 1080));
        });
    }
    template <class Work>
    static OperationReport of(Work work) {
        OperationReport report;
        const ReportScope scope(report);
        work();
        return report;
    }
    /// "5=11 kept only while ..." for each parameter, with the frames that went out for it.
    std::vector<std::string> set(const std::string& text) {
        const OperationReport report = of([&] { controller().setParameters(text); });
        std::vector<std::string> lines;
        for (const OperationReport::Parameter& one : report.parameters) {
            std::string line = std::to_string(one.id) + "=" + std::to_string(one.value) + " " + toText(one.outcome);
            line += (one.reason.empty() ? "" : " (" + one.reason + ")");
            for (std::size_t i = 0; i < one.frameCount; ++i) {
                const std::string& bytes = report.frames[one.firstFrame + i].bytes;
                line += " | " + toHex(bytes.data(), static_cast<int>(bytes.size()));
            }
            lines.push_back(line);
        }
        return lines;
    }

    Notes m_Notes;
};

} // namespace

TEST_F(Reports, ASettingHasOneOutcome) {
    start();
    controller().setDayNightMode(1); // in which the thread asks the block nothing
    m_pClock->advance(3);
    EXPECT_THAT(set("(1,50)(2,1)(5,11)(58,10)(80,1)"),
                ElementsAre("1=50 unchanged", "2=1 applied | 81 01 04 42 00 00 00 00 FF",
                            "5=11 kept (only while ExposalMode is 2)", "58=10 kept (only with an infrared board)",
                            "80=1 not served"));
    EXPECT_THAT(set("(1,101)"), ElementsAre("1=101 refused (p_nBrightness(101) is out of range)"));

    const std::string frame = " | 81 01 04 42 00 00 00 07 FF";
    m_pPort->addFault("refuse@every");
    EXPECT_THAT(set("(2,50)"), ElementsAre(testing::StartsWith("2=50 refused (answered 90 6")));
    m_pPort->clearFaults();
    m_pPort->addFault("silence@every");
    EXPECT_THAT(set("(2,50)"), ElementsAre("2=50 no answer (no answer)" + frame + frame + frame));
    m_pPort->clearFaults();
    m_pPort->addFault("silence@1");
    EXPECT_THAT(set("(2,50)"), ElementsAre("2=50 applied" + frame + frame));
    EXPECT_THAT(m_Notes.take(), testing::IsSupersetOf({std::string("80 not served: "),
                                                       std::string("1 refused: p_nBrightness(101) is out of range"),
                                                       std::string("2 no answer: no answer")}));

    m_pPort->addFault("port-gone:1000@1");
    EXPECT_THAT(set("(2,60)").front(), testing::StartsWith("2=60 no answer (the port failed)"));
    m_pClock->advance(3);
    m_pPort->clearFaults();
    EXPECT_THAT(set("(2,60)").front(), testing::StartsWith("2=60 applied"));
    EXPECT_THAT(m_Notes.take(), testing::IsSupersetOf({std::string("lost"), std::string("back")}));
}

TEST_F(Reports, AStartTellsItsFilesItsProgressAndWhatItRestored) {
    m_Root.writeSchemeCount(2);
    const auto fileOf = [](const OperationReport& report, const std::string& path) {
        for (const OperationReport::File& file : report.files)
            if (file.path == path)
                return static_cast<int>(file.found) * 10 + (file.isMadeAnew ? 1 : 0);
        return -1;
    };
    const auto as = [](OperationReport::FileState state, bool isMadeAnew) {
        return static_cast<int>(state) * 10 + (isMadeAnew ? 1 : 0);
    };
    using FileState = OperationReport::FileState;
    const std::string first = paths::SchemeFilePrefix + std::string("1.cfg");

    OperationReport report = start();
    EXPECT_TRUE(report.isUp);
    EXPECT_EQ(report.source, first);
    EXPECT_EQ(fileOf(report, paths::FactoryFile), as(FileState::Missing, true));
    EXPECT_EQ(fileOf(report, first), as(FileState::Missing, true));
    EXPECT_GT(m_Notes.m_nLogLines, 0);
    int counted = 0;
    auto last = StartProgress::Stage::Port;
    for (const StartProgress& progress : m_Notes.m_Progress) {
        EXPECT_GE(progress.stage, last);
        last = progress.stage;
        if (progress.stage == StartProgress::Stage::Parameters) {
            EXPECT_EQ(progress.done, counted++);
            EXPECT_EQ(progress.total, static_cast<int>(report.parameters.size()) + 2); // the version entries
        }
    }
    EXPECT_EQ(counted, static_cast<int>(report.parameters.size()) + 3);
    EXPECT_EQ(last, StartProgress::Stage::Up);

    destroy();
    m_Root.write(first, "");
    report = start();
    EXPECT_EQ(fileOf(report, first), as(FileState::Empty, true));
    EXPECT_EQ(fileOf(report, paths::FactoryFile), -1);
    destroy();
    m_Root.write(first, "(1,");
    report = start();
    EXPECT_EQ(fileOf(report, first), as(FileState::Broken, false));
    EXPECT_EQ(report.source, paths::FactoryFile);

    m_Notes.take();
    m_pClock->advance(1.5); // the choice of the clock is told, and so are night and the host's choice
    EXPECT_EQ(controller().setParameters("(12,2)"), 1);
    m_pClock->advance(3);
    EXPECT_THAT(m_Notes.take(), Contains("night"));
    report = of([&] { controller().setParamScheme(1); });
    EXPECT_EQ(report.source, paths::SchemeFilePrefix + std::string("2.cfg"));
    EXPECT_THAT(m_Notes.take(), Contains("scheme 1"));
}

TEST_F(Reports, TheAnswerToTheNotificationIsNotTakenForAStatus) {
    m_pPort = SafePointer<BlockPort>(new BlockPort(16, {.reactionTime = 5000}));
    start();
    EXPECT_THAT(errorLog(), HasSubstr("success"));
    m_pClock->advance(3);
    EXPECT_THAT(errorLog(), testing::Not(HasSubstr("===")));
}
