#pragma once

#include "host/Export.h"
#include "host/ModuleConfigure.h"

#include <memory>
#include <string>

class SensorUIConfigFile;

namespace sensorcontrol {
struct MergeReport;
}

/// Tells a host which camera module the device has and what the web interface may show for it. The module's record is
/// what SensorControllerManager::init takes.
///
/// One init at the start, on one thread; the getters may be called at any time, the texts do not change after init.
/// Failures are told on the console.
class SENSORCONTROL_API SensorFile {
public:
    /// The ids that a device's module can have. Records of the module list with others are passed over.
    static constexpr int FirstModuleId = 1;
    static constexpr int LastModuleId = 99;
    static constexpr bool isModuleId(int id) { return id >= FirstModuleId && id <= LastModuleId; }

    /// Module list "/hd1/moduleConfig/moduleConfig.xml", directory "/hd1/moduleConfig/sensorConfig".
    SensorFile();
    ~SensorFile();
    SensorFile(const SensorFile&) = delete;
    SensorFile& operator=(const SensorFile&) = delete;

    /// Both come before init. The directory has no slash at its end.
    void setModuleConfigFileName(const std::string& name);
    void setSensorConfigFilePath(const std::string& path);

    /// Selects the last record of the module list that fits the two selectors (ModuleConfigureParser: product, board)
    /// and has a usable id, then loads its texts. 1, or 0 without usable parameters, a prefix or the texts; the record
    /// stands also then. Blocks on some dozen files.
    int init(const std::string& first, const std::string& second);
    /// Reads the GUI description from a file. 1, or 0 with the text untouched: also for more than 4 MiB.
    int initUIInitConfigString(const std::string& path);

    /// Id 0 and no texts before init and without a usable record.
    ModuleConfigure& getModuleConfigure() { return m_ModuleConfigure; }
    /// The GUI description, byte for byte.
    std::string& getUISensorConfig_V1() { return m_strUISensorConfig; }
    /// The module's style.
    std::string& getUIStyleConfig();
    /// Of the language, else of language 1, else empty.
    const std::string& getUILanguageConfig(int languageId) const;
    const std::string& getUICommonConfig(int languageId) const;

    /// Lets each init write down what its style merge does; null, as at the start, for nothing. An init that does not
    /// come to the texts leaves the report as it is.
    void setMergeReport(sensorcontrol::MergeReport* report);

private:
    void selectModule(const std::string& first, const std::string& second);

    std::string m_strModuleConfigFileName;
    std::string m_strSensorConfigFilePath;
    ModuleConfigure m_ModuleConfigure;
    std::string m_strUISensorConfig;
    std::unique_ptr<SensorUIConfigFile> m_pSensorUIConfigFile;
};
