#pragma once

#include "host/Export.h"
#include "host/ModuleConfigure.h"

#include <string>
#include <vector>

/// Reads the device's module list.
class SENSORHOST_API ModuleConfigureParser {
public:
    /// Appends the modules of the file, in file order, that the two selectors name: the product and the board, an
    /// empty selector standing for any. 1, or 0 if the file cannot be read.
    static int parse(const std::string& fileName, const std::string& product, const std::string& board,
                     std::vector<ModuleConfigure>& modules);
};
