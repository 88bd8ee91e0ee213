#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <unistd.h>

namespace fuzzing {

/// Ends the program as a crash does if a promise is broken, so that the input is kept.
inline void require(bool holds, int line = __builtin_LINE()) {
    if (!holds) {
        std::fprintf(stderr, "broken promise in line %d\n", line);
        std::abort();
    }
}

/// Whether TinyXML writes what it read from this text so that it reads the same again: it writes declarations with
/// quotes around whatever they hold, blanks that came as references as blanks, and in some releases "&#x" wherever it
/// comes from.
inline bool isPlainXml(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80U; }) &&
           text.find("&#") == std::string_view::npos && text.find("&amp;") == std::string_view::npos &&
           (text.find("<?") == std::string_view::npos || text.find_first_of("&'") == std::string_view::npos);
}

/// A folder of this process, gone with it. Its path has the same length every time, as an input's way may depend on it.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = std::filesystem::temp_directory_path() / "fuzz.XXXXXX";
        require(mkdtemp(name.data()) != nullptr);
        m_Path = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return m_Path; }

    std::string read(const std::string& name) const {
        std::ifstream file(m_Path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void write(const std::string& name, std::string_view bytes) const {
        std::ofstream(m_Path / name, std::ios::binary | std::ios::trunc)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

private:
    std::filesystem::path m_Path;
};

} // namespace fuzzing
