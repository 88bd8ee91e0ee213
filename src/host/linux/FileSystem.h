#pragma once

#include <string>

namespace sensorhost {

/// Makes the missing parent folders of a file of this machine that is about to be written, if it lies under the root.
void makeParentFolder(const std::string& hostFile);

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
