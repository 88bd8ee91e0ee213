#include "BlockConsole.h"
#include "Commands.h"
#include "Failure.h"
#include "InputLines.h"
#include "Interrupt.h"
#include "Output.h"
#include "Session.h"
#include "simulator/BlockRegistry.h"
#include "simulator/StateFile.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

namespace sensorctl {

namespace {

/// Behind the name of --link, for the port that a few blocks have beside the first.
constexpr const char* SecondPort = "-second";

/// Arguments as the user meant them: bytes apart, or whole lines in quotes.
std::vector<std::string> linesOf(const std::vector<std::string>& words) {
    for (const std::string& word : words)
        if (word.find(' ') != std::string::npos)
            return words;
    std::string line;
    for (const std::string& word : words)
        line += word + ' ';
    return {line};
}

class Decoding {
public:
    Decoding(Output& output, int moduleId) : m_Output(output), m_pDecoder(makeDecoder(moduleId)) {
        if (m_pDecoder == nullptr)
            throw Failure(Usage, "the frames of module " + std::to_string(moduleId) + " cannot be decoded");
    }

    void decode(const std::string& text) {
        ++m_nLine;
        const std::size_t first = text.find_first_not_of(" \t\r");
        if (first == std::string::npos || text[first] == '#')
            return;
        std::string error;
        std::optional<TraceLine> line = TraceLine::parse(text, *m_pDecoder, error);
        if (!line) {
            m_Output.report(Failure(Usage, "line " + std::to_string(m_nLine) + ": " + error));
            m_nCode = Usage;
            return;
        }
        line->decode(*m_pDecoder);
        m_Output.record(line->text(), line->json());
    }
    int code() const { return m_nCode; }

private:
    Output& m_Output;
    std::unique_ptr<FrameDecoder> m_pDecoder;
    int m_nLine = 0;
    int m_nCode = Done;
};

void loadIfThere(camerasim::CameraBlock& block, const std::string& path) {
    std::error_code error;
    if (path.empty() || !std::filesystem::exists(path, error))
        return;
    std::string reason;
    if (!camerasim::loadState(block, path, reason))
        throw Failure(Trouble, "--state " + path + ": " + reason, {"try: another file, or remove it"});
}

void save(camerasim::PtyServer& server, const std::string& path) {
    std::string error;
    if (!path.empty() && !server.withBlock([&](camerasim::CameraBlock& block, std::int64_t) {
            return camerasim::saveState(block, path, error);
        }))
        throw Failure(Trouble, "--state " + path + ": " + error);
}

/// Takes commands until quit, the end of the input or a signal.
void serve(Output& output, camerasim::PtyServer& server, camerasim::PtyServer* companion) {
    BlockConsole console(output, server, companion);
    InputLines input;
    std::string text;
    while (output.isWritable() && input.next(text) == InputLines::Result::Line) {
        std::istringstream stream(text.substr(0, text.find('#')));
        std::string command;
        if (!(stream >> command))
            continue;
        std::vector<std::string> words;
        for (std::string word; stream >> word;)
            words.push_back(word);
        if (command == "quit" || command == "exit")
            return;
        try {
            if (command == "help")
                output.note(BlockConsole::commands() + "  quit                    end");
            else if (console.knows(command))
                console.execute(command, words);
            else
                throw Failure(Usage, '"' + command + "\" is no command", {"try: help"});
        } catch (const Failure& failure) {
            output.report(failure);
        }
    }
}

} // namespace

int trace(Output& output, const TargetOptions& target, const std::vector<std::string>& assignments, double seconds) {
    target.check(true);
    Parameters(target.moduleId).parseAssignments(assignments);
    Session session(output, target);
    session.addListener([&output](const TraceLine& line) { output.record(line.text(), line.json()); });
    session.bringUp();
    const int code = applyParameters(output, session, assignments, false);
    if (seconds > 0)
        Interrupt::sleep(std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000)));
    return code;
}

int decode(Output& output, int moduleId, const std::vector<std::string>& words) {
    checkModule(moduleId);
    Decoding decoding(output, moduleId);
    if (!words.empty()) {
        for (const std::string& line : linesOf(words))
            decoding.decode(line);
        return decoding.code();
    }
    InputLines input;
    std::string line;
    while (output.isWritable() && input.next(line) == InputLines::Result::Line)
        decoding.decode(line);
    return Interrupt::isRequested() ? static_cast<int>(Interrupted) : decoding.code();
}

int simulate(Output& output, const SimulateOptions& options) {
    checkSimulated(options.moduleId);
    for (const std::string& plan : options.faults)
        checkFaults(plan);
    std::unique_ptr<camerasim::CameraBlock> block = camerasim::makeBlock(options.moduleId);
    loadIfThere(*block, options.stateFile);

    camerasim::PtyServer::Settings settings;
    settings.baud = options.baud >= 0 ? options.baud : camerasim::findBlock(options.moduleId)->baud;
    settings.linkPath = options.link;
    camerasim::PtyServer server(std::move(block), settings);
    std::string error;
    for (const std::string& plan : options.faults)
        server.withLine([&](camerasim::Line& line, std::int64_t) { line.faults().add(plan, error); });
    if (!server.start(error))
        throw Failure(Trouble, "the block has no port: " + error, {"try: another --link"});

    std::unique_ptr<camerasim::PtyServer> second;
    if (std::unique_ptr<camerasim::CameraBlock> companion = camerasim::makeCompanion(options.moduleId)) {
        settings.linkPath += options.link.empty() ? "" : SecondPort;
        second = std::make_unique<camerasim::PtyServer>(std::move(companion), settings);
        if (!second->start(error))
            throw Failure(Trouble, "the block has no second port: " + error, {"try: another --link"});
    }

    nlohmann::ordered_json object;
    object["port"] = server.portPath();
    object["module"] = options.moduleId;
    if (second != nullptr)
        object["secondPort"] = second->portPath();
    output.record(server.portPath() + (second != nullptr ? ' ' + second->portPath() : ""), object);
    serve(output, server, second.get());
    save(server, options.stateFile);
    server.stop();
    return Done;
}

} // namespace sensorctl
