#include "BlockConsole.h"

#include "Failure.h"
#include "Output.h"
#include "SceneConsole.h"
#include "TargetOptions.h"
#include "TraceLine.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>

#include <strings.h>

namespace sensorctl {

namespace {

struct CommandRow {
    std::string_view name;
    std::string_view usage;
    std::string_view purpose;
    std::size_t mostWords;
};

constexpr auto Commands = std::to_array<CommandRow>({
    {"dark", "dark", "it gets dark at the block's sensor", 0},
    {"light", "light", "it gets light", 0},
    {"scene", "scene [LUX]", "the light there, and what the block makes of it", 1},
    {"fault", "fault PLAN|clear", "faults from the next exchange on, or none any more", 1},
    {"block", "block [NAME|HEX]", "the block's registers: address, value, name", 9},
    {"received", "received", "the frames that the block got whole", 0},
    {"reboot", "reboot [lose]", "restart the block; lose: back to its factory state", 1},
    {"unplug", "unplug", "take the port away", 0},
    {"plug", "plug", "bring it back, on a new pseudo-terminal", 0},
});

std::string hex(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02X", value);
    return text;
}

std::string joined(std::span<const std::string> words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

} // namespace

bool BlockConsole::knows(const std::string& command) const {
    for (const CommandRow& row : Commands)
        if (row.name == command)
            return true;
    return false;
}

std::string BlockConsole::commands() {
    std::string text;
    for (const CommandRow& row : Commands) {
        std::string usage(row.usage);
        usage.resize(24, ' ');
        text += "  " + usage + std::string(row.purpose) + '\n';
    }
    return text;
}

void BlockConsole::execute(const std::string& command, std::span<const std::string> words) {
    for (const CommandRow& row : Commands)
        if (row.name == command && words.size() > row.mostWords)
            throw Failure(Usage, '"' + command + ' ' + joined(words) + "\": too many words",
                          {"try: " + std::string(row.usage)});
    if (command == "dark" || command == "light") {
        const auto ambient = command == "dark" ? camerasim::Ambient::Dark : camerasim::Ambient::Light;
        m_Server.withBlock([&](camerasim::CameraBlock& block, std::int64_t) { block.setAmbient(ambient); });
    } else if (command == "scene") {
        if (!words.empty()) {
            const double lux = SceneConsole::parseLux(words[0]);
            m_Server.withBlock([&](camerasim::CameraBlock& block, std::int64_t) { block.setLight(lux); });
        }
        showScene();
    } else if (command == "fault") {
        addFaults(words);
    } else if (command == "block") {
        showRegisters(words);
    } else if (command == "received") {
        showReceived();
    } else if (command == "reboot") {
        if (!words.empty() && words[0] != "lose")
            throw Failure(Usage, "reboot " + words[0] + ": unknown word", {"try: reboot, or reboot lose"});
        m_Server.withBlock([&](camerasim::CameraBlock& block, std::int64_t now) { block.reboot(now, !words.empty()); });
    } else if (command == "unplug") {
        m_Server.unplug();
    } else if (command == "plug") {
        std::string error;
        if (!m_Server.plug(error))
            throw Failure(Trouble, "plug: " + error);
        nlohmann::ordered_json object;
        object["port"] = m_Server.portPath();
        m_Output.record(m_Server.portPath(), object);
    }
}

void BlockConsole::showScene() {
    nlohmann::ordered_json object;
    std::string text;
    m_Server.withBlock([&](const camerasim::CameraBlock& block, std::int64_t) {
        const std::string picture = block.picture() == camerasim::Picture::Day ? "day" : "night";
        const std::string decides = block.decidesDayNight() ? "block" : "host";
        const std::optional<int> lamps = block.lamps();
        char light[32];
        std::snprintf(light, sizeof light, "scene %g lux", block.light());
        text = light + (" picture " + picture) + " by " + decides;
        object["lux"] = block.light();
        object["picture"] = picture;
        object["by"] = decides;
        object["lamps"] = lamps ? nlohmann::ordered_json(*lamps) : nlohmann::ordered_json();
        object["videoSystem"] = block.videoSystem();
        text += lamps ? " lamps " + std::to_string(*lamps) : "";
        text += block.videoSystem().empty() ? "" : " video " + block.videoSystem();
    });
    m_Output.record(text, object);
}

void BlockConsole::showRegisters(std::span<const std::string> words) {
    const std::string wanted = joined(words);
    bool isFound = false;
    std::vector<camerasim::RegisterState> states;
    forEachBlock([&](const camerasim::CameraBlock& block) {
        const std::vector<camerasim::RegisterState> its = block.registers();
        states.insert(states.end(), its.begin(), its.end());
    });
    for (const camerasim::RegisterState& state : states) {
        if (!wanted.empty() && ::strcasecmp(wanted.c_str(), state.name.c_str()) != 0 &&
            ::strcasecmp(wanted.c_str(), hex(state.address).c_str()) != 0)
            continue;
        isFound = true;
        nlohmann::ordered_json object;
        object["address"] = hex(state.address);
        object["value"] = state.value;
        object["name"] = state.name;
        m_Output.record(hex(state.address) + ' ' + hex(state.value) + ' ' + state.name, object);
    }
    if (!isFound)
        throw Failure(Usage, "the block has no register \"" + wanted + '"', {"try: block, for all of them"});
}

void BlockConsole::showReceived() {
    struct Received {
        std::string bytes;
        std::string meaning;
    };
    std::vector<Received> frames;
    forEachBlock([&](const camerasim::CameraBlock& block) {
        for (const camerasim::WireFrame& frame : block.receivedFrames())
            frames.push_back({hexText(frame.bytes()), block.describe(frame.bytes())});
    });
    for (const Received& frame : frames) {
        nlohmann::ordered_json object;
        object["bytes"] = frame.bytes;
        object["meaning"] = frame.meaning;
        m_Output.record(frame.bytes + " # " + frame.meaning, object);
    }
}

void BlockConsole::addFaults(std::span<const std::string> words) {
    if (words.empty())
        throw Failure(Usage, "fault: a plan is missing", {"try: fault silence@1-3, or fault clear"});
    if (words[0] == "clear") {
        m_Server.withLine([](camerasim::Line& line, std::int64_t) { line.faults().clear(); });
        return;
    }
    checkFaults(words[0]);
    std::string error;
    m_Server.withLine([&](camerasim::Line& line, std::int64_t) { line.faults().add(words[0], error); });
}

} // namespace sensorctl
