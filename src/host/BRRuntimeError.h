#pragma once

#include "host/Export.h"

#include <exception>
#include <string>

/// What the misuse of a SafePointer throws.
class SENSORHOST_API BRRuntimeError : public std::exception {
public:
    explicit BRRuntimeError(const char* text);
    ~BRRuntimeError() override;
    const char* what() const noexcept override;

private:
    std::string m_strText;
};
