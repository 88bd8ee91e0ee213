#pragma once

#include <string>

/// A folder of its own under which all files of the device live, for the life of the object.
class TempRoot {
public:
    /// The name is put at the end of the folder's.
    explicit TempRoot(const std::string& name = "root");
    ~TempRoot();
    TempRoot(const TempRoot&) = delete;
    TempRoot& operator=(const TempRoot&) = delete;

    const std::string& path() const { return m_strPath; }

    /// The text of a device file, "<none>" if it is not there.
    std::string read(const std::string& devicePath) const;
    bool exists(const std::string& devicePath) const;
    std::string path(const std::string& devicePath) const { return m_strPath + devicePath; }
    void write(const std::string& devicePath, const std::string& text) const;
    /// The texts in the controller's error log, joined by " | ".
    std::string errorLines() const;
    void remove(const std::string& devicePath) const;

    /// Makes the installation's file that says how many schemes there are.
    void writeSchemeCount(int count) const;

private:
    std::string m_strFolder;
    std::string m_strPath;
};
