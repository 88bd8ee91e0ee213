#pragma once

#include <string>

/// A root folder of its own for a test, removed at the end.
class TemporaryRoot {
public:
    /// The name is put at the end of the folder's.
    explicit TemporaryRoot(const std::string& name = "root");
    ~TemporaryRoot();
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;

    /// The contents of a file by its path on the device; "(missing)" if it cannot be read.
    std::string read(const std::string& devicePath) const;
    /// Writes a file, making its folders.
    void write(const std::string& devicePath, const std::string& text) const;
    bool exists(const std::string& devicePath) const;
    std::string path(const std::string& devicePath) const { return m_strRoot + devicePath; }

private:
    std::string m_strFolder;
    std::string m_strRoot;
};

/// Lets files of this process grow to that many bytes only, as on a full disk, for the life of the object.
class FullDisk {
public:
    explicit FullDisk(unsigned long limit);
    ~FullDisk();
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    unsigned long m_nPrevious;
};
