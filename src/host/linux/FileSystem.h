#pragma once

#include <string>

namespace sensorhost {

/// Makes the missing parent folders of a file of this machine that is about to be written, if it lies under the root,
/// and brings them to the disk.
void makeParentFolder(const std::string& hostFile);

/// Whether denyAccess forbids to open the file so.
bool isDenied(const std::string& hostFile, int flags);

/// Opens a file of this machine as `flags` say, with 0644 for one that is made. The descriptor, or -1 with errno set:
/// EACCES for what denyAccess forbids, EINVAL for what is no regular file. A pipe does not hang it.
int openRegularFile(const std::string& hostFile, int flags);

/// Brings the entries of a folder of this machine to the disk.
void syncFolder(const std::string& hostFolder);

/// Brings the entry of a new file to the disk, which syncing the file itself does not.
void syncEntry(const std::string& hostFile);

/// The same with what is in the file; for a folder all of its file system.
void syncWhole(const std::string& hostFile);

/// An open descriptor.
class Descriptor {
public:
    explicit Descriptor(int value = -1) : m_nValue(value) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_nValue; }
    bool isOpen() const { return m_nValue >= 0; }
    void reset(int value = -1);

private:
    int m_nValue;
};

} // namespace sensorhost
