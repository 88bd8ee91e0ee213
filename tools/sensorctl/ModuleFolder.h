#pragma once

#include "host/ModuleConfigure.h"
#include "uiconfig/MergeReport.h"
#include "uiconfig/SensorFile.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sensorctl {

/// Which module of which configuration folder. An empty selector stands for any.
struct ModuleSelection {
    std::string folder; ///< holds moduleConfig.xml and sensorConfig
    std::string product;
    std::string board;
};

/// A configuration folder as the library reads it on a device.
class ModuleFolder {
public:
    /// Throws Failure if there is no module list, or no usable module that fits.
    explicit ModuleFolder(const ModuleSelection& selection);

    const ModuleConfigure& module() { return m_File.getModuleConfigure(); }
    /// What fits the selectors, in file order; the chosen one is the last that has a usable id.
    const std::vector<ModuleConfigure>& records() const { return m_Records; }
    std::size_t chosen() const { return m_nChosen; }

    /// False if the library did not come to the end with the web interface's texts.
    bool hasTexts() const { return m_bTexts; }
    SensorFile& texts() { return m_File; }
    const sensorcontrol::MergeReport& report() const { return m_Report; }
    /// What the library said meanwhile, without the line that says that all went well.
    const std::vector<std::string>& complaints() const { return m_Complaints; }

private:
    void load(const ModuleSelection& selection);

    SensorFile m_File;
    sensorcontrol::MergeReport m_Report;
    std::vector<ModuleConfigure> m_Records;
    std::size_t m_nChosen = 0;
    std::vector<std::string> m_Complaints;
    bool m_bTexts = false;
};

} // namespace sensorctl
