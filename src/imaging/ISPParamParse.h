#pragma once

#include "host/DevicePaths.h"
#include "imaging/ISPParam.h"

class XmlConfigureNode;

/// Reads the tuning file into a tuning table. For one load, on one thread.
///
/// The file: below the root a node "config" with the properties "realTimeUpdate" (truth value) and "time" (seconds);
/// in it one node per type, named after it, with "enable" (truth value); in that one node per unit, named after it,
/// with "min" and "max"; in that items with "name" and "value". A node or item that lacks one of these is skipped.
class ISPParamParse {
public:
    /// Where the tuning file lies on the device.
    static constexpr const char* FilePath = sensorcontrol::paths::TuningFile;

    /// 1, or 0 after a message on the console: no such file, or no tuning file.
    int parse();

    /// Replaces what `target` held by the table read. Always 1.
    int getISPParam(ISPParam& target) const;
    /// Seconds between two passes as the file has them, whatever they are; 1 unless it says.
    int getDelayTime() const { return m_nDelayTime; }
    /// Whether the file is to be read again on every pass; false unless it says.
    bool getRealTimeUpdate() const { return m_bRealTimeUpdate; }

private:
    void parseType(const XmlConfigureNode& typeNode);
    void parseUnit(const std::string& type, const XmlConfigureNode& unitNode);

    ISPParam m_objISPParam;
    int m_nDelayTime = 1;
    bool m_bRealTimeUpdate = false;
};
