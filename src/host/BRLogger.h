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

    /// Starts the log: at most `size` bytes a file, `count` files. 1, or 0 if the file cannot be written: then the log
    /// is tried again as told at writeLog. An empty path, size or count gives 0 and no log.
    int init(const char* path, unsigned int size, unsigned int count);

    /// Appends a line with the time and the tag; before init it does nothing. A line that the log does not take (a full
    /// or read-only disk, something at its path that is no regular file) is lost, and the log is then left alone for a
    /// minute of the host's clock: what is logged meanwhile is lost too and costs no system call. The next line after
    /// that tries again.
    void writeLog(const char* tag, const char* text);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};
