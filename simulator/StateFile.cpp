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

constexpr std::string_view headWord = "camerasim-state 1 ";

/// The line up to its comment, without blanks at either end; taken off the text.
std::string_view takeLine(std::string_view& p_strText) {
    const std::size_t nEnd = std::min(p_strText.find('\n'), p_strText.size());
    std::string_view strLine = p_strText.substr(0, nEnd);
    p_strText.remove_prefix(std::min(nEnd + 1, p_strText.size()));
    strLine = strLine.substr(0, strLine.find('#'));
    const std::size_t nFirst = std::min(strLine.find_first_not_of(" \t\r"), strLine.size());
    strLine.remove_prefix(nFirst);
    return strLine.substr(0, strLine.find_last_not_of(" \t\r") + 1);
}

bool parseHex(std::string_view p_strText, std::uint32_t& p_nValue) {
    const auto result = std::from_chars(p_strText.data(), p_strText.data() + p_strText.size(), p_nValue, 16);
    return result.ec == std::errc() && result.ptr == p_strText.data() + p_strText.size();
}

} // namespace

std::string stateText(const CameraBlock& p_Block) {
    std::string strText = std::string(headWord) + std::string(p_Block.modelName()) + '\n';
    for (const RegisterState& state : p_Block.registers()) {
        if (state.persistent) {
            char numbers[32];
            std::snprintf(numbers, sizeof numbers, "%04X %X", state.address, state.value);
            strText += std::string(numbers) + "  # " + state.name + '\n';
        }
    }
    return strText;
}

bool applyStateText(CameraBlock& p_Block, std::string_view p_strText, std::string& p_strError) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> values;
    if (takeLine(p_strText) != std::string(headWord) + std::string(p_Block.modelName())) {
        p_strError = "line 1: expected \"" + std::string(headWord) + std::string(p_Block.modelName()) + "\"";
        return false;
    }
    for (int nLine = 2; !p_strText.empty(); ++nLine) {
        const std::string_view strLine = takeLine(p_strText);
        if (strLine.empty()) {
            continue;
        }
        const std::size_t nGap = strLine.find_first_of(" \t");
        std::uint32_t nAddress = 0;
        std::uint32_t nValue = 0;
        if (nGap == std::string_view::npos || !parseHex(strLine.substr(0, nGap), nAddress) ||
            !parseHex(strLine.substr(strLine.find_first_not_of(" \t", nGap)), nValue)) {
            p_strError = "line " + std::to_string(nLine) + ": expected a register address and its value in hex";
            return false;
        }
        if (!p_Block.registerValue(nAddress)) {
            p_strError =
                "line " + std::to_string(nLine) + ": the block has no register " + std::string(strLine.substr(0, nGap));
            return false;
        }
        values.emplace_back(nAddress, nValue);
    }
    for (const auto& [nAddress, nValue] : values) {
        p_Block.setRegister(nAddress, nValue);
    }
    return true;
}

bool saveState(const CameraBlock& p_Block, const std::string& p_strPath, std::string& p_strError) {
    const std::string strTemporary = p_strPath + ".new";
    std::ofstream file(strTemporary, std::ios::binary | std::ios::trunc);
    file << stateText(p_Block);
    file.close();
    std::error_code error;
    if (file) {
        std::filesystem::rename(strTemporary, p_strPath, error);
        if (!error) {
            return true;
        }
    }
    std::error_code ignored;
    std::filesystem::remove(strTemporary, ignored);
    p_strError = "cannot write " + p_strPath + (error ? ": " + error.message() : std::string());
    return false;
}

bool loadState(CameraBlock& p_Block, const std::string& p_strPath, std::string& p_strError) {
    std::ifstream file(p_strPath, std::ios::binary);
    const std::string strText{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad()) {
        p_strError = "cannot read " + p_strPath;
        return false;
    }
    if (!applyStateText(p_Block, strText, p_strError)) {
        p_strError = p_strPath + ": " + p_strError;
        return false;
    }
    return true;
}

} // namespace camerasim
