#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace sensorctl {

/// While it lives, what is printed to standard output is kept here: the library tells some failures nowhere else.
class ConsoleCapture {
public:
    ConsoleCapture();
    ~ConsoleCapture();
    ConsoleCapture(const ConsoleCapture&) = delete;
    ConsoleCapture& operator=(const ConsoleCapture&) = delete;

    /// Ends the capture. The lines without blanks at their ends, no empty ones; one that says so if nothing could be
    /// kept (there is no room for temporary files).
    std::vector<std::string> finish();

private:
    void restore();

    std::FILE* m_pFile;
    int m_nSaved = -1;
    std::string m_strFault;
};

} // namespace sensorctl
