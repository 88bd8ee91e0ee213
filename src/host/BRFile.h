#pragma once

#include "host/Export.h"

#include <memory>

/// A file, read or replaced as a whole. Paths are the device's absolute paths.
/// One object serves one thread at a time.
class SENSORHOST_API BRFile {
public:
    enum OpenMode {
        Read = 1,
        /// What is written replaces the contents, in place and without a moment in which neither the old nor the new
        /// text can be read: a process that dies leaves one of the two. Nothing written leaves the file as it was. What
        /// changed is on the disk after close, the entry of a new file in its folder too; the text that is there
        /// already is neither written nor synced.
        Replace = 0x62,
    };

    BRFile();
    /// Closes the file.
    ~BRFile();
    BRFile(const BRFile&) = delete;
    BRFile& operator=(const BRFile&) = delete;

    /// 1, or 0 if the file cannot be opened in this mode. Replace creates a missing file. Only regular files are
    /// opened: a pipe or a device gives 0 at once. A file that isExist sees and that does not open for reading is there
    /// and out of reach (rights, or no file); a broken one opens.
    int open(const char* path, int mode);

    /// Bytes in the file, -1 if it is not open.
    long long getLength() const;

    /// Reads on from the last position. Bytes read, fewer than asked at the end of the file, -1 on failure.
    int read(void* buffer, int length);

    /// Makes the bytes the file's whole contents. The length, or -1 on failure: then the old contents still stand
    /// (a full or read-only file system, a file that is not open for replacing).
    int write(const void* bytes, int length);

    /// Blocks until what was written is on the disk.
    void close();

    /// 1 if the path names a file that is there.
    static int isExist(const char* path);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};
