#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

/// A folder of this process, gone with it.
class ScratchFolder {
public:
    ScratchFolder() : m_Path(std::filesystem::temp_directory_path() / ("fuzz." + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_Path);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return m_Path; }

    void write(const std::string& name, std::string_view bytes) const {
        std::ofstream(m_Path / name, std::ios::binary | std::ios::trunc)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

private:
    std::filesystem::path m_Path;
};

} // namespace fuzzing
