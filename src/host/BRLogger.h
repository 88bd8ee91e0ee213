#pragma once

#include "host/Export.h"

#include <memory>

/// A log file that rotates: the log itself, then ".1", ".2" and so on. May be used from any thread.
class SENSORHOST_API BRLogger {
public:
    BRLogger();
    ~BRLogger();
    BRLogger(const BRLogger&) = delete;
    BRLogger& operator=(const BRLogger&) = delete;

    /// Starts the log: at most `size` bytes a file, `count` files. 1, or 0 if the file cannot be written.
    int init(const char* path, unsigned int size, unsigned int count);

    /// Appends a line with the time and the tag. Before init, or when the disk is full, it does nothing.
    void writeLog(const char* tag, const char* text);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};
