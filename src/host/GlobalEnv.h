#pragma once

#include "host/Export.h"

#include <atomic>

/// Settings of the whole process.
class SENSORHOST_API GlobalEnv {
public:
    static GlobalEnv* getInstance();

    /// Non-zero if plain diagnostics may go to the console.
    int getPrintFlag() const { return m_nPrintFlag; }
    void setPrintFlag(int flag) { m_nPrintFlag = flag; }

private:
    GlobalEnv() = default;
    std::atomic<int> m_nPrintFlag{1};
};
