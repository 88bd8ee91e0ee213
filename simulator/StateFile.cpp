#include "simulator/StateFile.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

namespace camerasim {

namespace {

constexpr std::string_view HeadWord = "camerasim-state 1 ";

/// The line up to its comment, without blanks at either end; taken off the text.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line = line.substr(0, line.find('#'));
    const std::size_t first = std::min(line.find_first_not_of(" \t\r"), line.size());
    line.remove_prefix(first);
    return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

bool parseHex(std::string_view text, std::uint32_t& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

} // namespace

std::string stateText(const CameraBlock& block) {
    std::string text = std::string(HeadWord) + std::string(block.modelName()) + '\n';
    for (const RegisterState& state : block.registers()) {
        if (state.persistent) {
            char numbers[32];
            std::snprintf(numbers, sizeof numbers, "%04X %X", state.address, state.value);
            text += std::string(numbers) + "  # " + state.name + '\n';
        }
    }
    return text;
}

bool applyStateText(CameraBlock& block, std::string_view text, std::string& error) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> values;
    if (takeLine(text) != std::string(HeadWord) + std::string(block.modelName())) {
        error = "line 1: expected \"" + std::string(HeadWord) + std::string(block.modelName()) + "\"";
        return false;
    }
    for (int number = 2; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        if (line.empty()) {
            continue;
        }
        const std::size_t gap = line.find_first_of(" \t");
        std::uint32_t address = 0;
        std::uint32_t value = 0;
        if (gap == std::string_view::npos || !parseHex(line.substr(0, gap), address) ||
            !parseHex(line.substr(line.find_first_not_of(" \t", gap)), value)) {
            error = "line " + std::to_string(number) + ": expected a register address and its value in hex";
            return false;
        }
        if (!block.registerValue(address)) {
            error =
                "line " + std::to_string(number) + ": the block has no register " + std::string(line.substr(0, gap));
            return false;
        }
        values.emplace_back(address, value);
    }
    for (const auto& [address, value] : values) {
        block.setRegister(address, value);
    }
    return true;
}

bool saveState(const CameraBlock& block, const std::string& path, std::string& error) {
    const std::string temporary = path + ".new";
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << stateText(block);
    file.close();
    std::error_code failure;
    if (file) {
        std::filesystem::rename(temporary, path, failure);
        if (!failure) {
            return true;
        }
    }
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    error = "cannot write " + path + (failure ? ": " + failure.message() : std::string());
    return false;
}

bool loadState(CameraBlock& block, const std::string& path, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad()) {
        error = "cannot read " + path;
        return false;
    }
    if (!applyStateText(block, text, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

} // namespace camerasim
