#pragma once

#include "host/Export.h"
#include "host/XmlConfigureTool.h"

#include <string>

class IRPowerParamV2;

/// Reads how strong the IR lights should be by zoom position, and reads and writes the version of that table. Which
/// file it is, the host says with each call, and its tool argument goes to the XML tool unchanged. One object serves
/// one caller at a time.
///
/// load, getVersion and setVersion give 0 for success, -1 for a missing node, -2 for a missing list of items, -3 for a
/// property that cannot be read or a version that cannot be written, -4 for a file that cannot be opened.
class SENSORCONTROL_API IRPowerDefaultConfig {
public:
    /// Mode 1 opens an existing file for reading; mode 2 opens for a change, and makes a file with the known version
    /// and no table if there is none, written at close. 1 or 0.
    int open(int toolArg, const std::string& path, int mode);
    void close();

    /// The whole table, in the order of the file; on failure `param` stays as it was.
    int load(int toolArg, const std::string& path, IRPowerParamV2& param);

    /// From the file once, from memory afterwards.
    int getVersion(int toolArg, const std::string& path, int& version);
    /// A version that the file is known to have costs nothing. Makes the file if there is none.
    int setVersion(int toolArg, const std::string& path, int version);

private:
    int m_nVersion = 1;
    XmlConfigureTool m_Tool;
    bool m_bVersionValid = false; ///< m_nVersion is what the file holds
};
