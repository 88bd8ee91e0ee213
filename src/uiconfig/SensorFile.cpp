#include "uiconfig/SensorFile.h"

#include "host/ModuleConfigureParser.h"
#include "host/ModuleParameterParser.h"
#include "uiconfig/SensorUIConfigFile.h"
#include "uiconfig/UiFile.h"

#include <cstdio>
#include <utility>
#include <vector>

using sensorhost::FileText;

SensorFile::SensorFile()
    : m_strModuleConfigFileName("/hd1/moduleConfig/moduleConfig.xml"),
      m_strSensorConfigFilePath("/hd1/moduleConfig/sensorConfig"),
      m_pSensorUIConfigFile(std::make_unique<SensorUIConfigFile>()) {}

SensorFile::~SensorFile() = default;

void SensorFile::setModuleConfigFileName(const std::string& name) { m_strModuleConfigFileName = name; }

void SensorFile::setSensorConfigFilePath(const std::string& path) { m_strSensorConfigFilePath = path; }

int SensorFile::init(const std::string& first, const std::string& second) {
    selectModule(first, second);
    ModuleParameterParser parameters;
    if (!parameters.parse(m_ModuleConfigure.getParameters())) {
        std::puts("parse senseParameter failed");
        return 0;
    }
    std::string guiConfig;
    if (!parameters.getValue("GUIConfig", guiConfig))
        std::puts("get GUIConfigName from senseParameter failed");
    const std::string path = m_strSensorConfigFilePath + '/' + guiConfig;
    if (!initUIInitConfigString(path))
        std::printf("initUIConfigString from %s failed\n", path.c_str());
    std::string prefix;
    if (!parameters.getValue("Prefix", prefix)) {
        std::puts("getPrefix failed ");
        return 0;
    }
    m_pSensorUIConfigFile->setUIConfigPath(m_strSensorConfigFilePath);
    m_pSensorUIConfigFile->setUIConfigPrefix(prefix);
    if (!m_pSensorUIConfigFile->init(m_ModuleConfigure.getDetail())) {
        std::puts("m_pSensorUIConfigFile  init  failed");
        return 0;
    }
    std::puts("SensorFile::init  successs !!!!");
    return 1;
}

void SensorFile::selectModule(const std::string& first, const std::string& second) {
    std::vector<ModuleConfigure> modules;
    if (!ModuleConfigureParser::parse(m_strModuleConfigFileName, first, second, modules))
        m_ModuleConfigure.setModuleId(0);
    for (const ModuleConfigure& module : modules) {
        if (!isModuleId(module.getModuleId()))
            continue;
        m_ModuleConfigure.setModuleId(module.getModuleId());
        m_ModuleConfigure.setDetail(module.getDetail());
        m_ModuleConfigure.setParameters(module.getParameters());
    }
}

int SensorFile::initUIInitConfigString(const std::string& path) {
    FileText file = sensorcontrol::readUiFile(path, sensorcontrol::ServedTextLimit);
    switch (file.result) {
    case FileText::Result::Done:
        m_strUISensorConfig = std::move(file.text);
        return 1;
    case FileText::Result::NotOpened:
        std::puts("ISensorController::initUIInitConfigString error");
        return 0;
    case FileText::Result::ShortRead:
        std::printf("read sensorUIConfig failed,fileLength = %d,readLength = %lld\n", static_cast<int>(file.length),
                    file.read);
        return 0;
    default:
        return 0;
    }
}

std::string& SensorFile::getUIStyleConfig() { return m_pSensorUIConfigFile->getUIStyleConfigString(); }

const std::string& SensorFile::getUILanguageConfig(int languageId) const {
    return m_pSensorUIConfigFile->getUILanguageConfigString(languageId);
}

const std::string& SensorFile::getUICommonConfig(int languageId) const {
    return m_pSensorUIConfigFile->getUICommonConfigString(languageId);
}

void SensorFile::setMergeReport(sensorcontrol::MergeReport* report) { m_pSensorUIConfigFile->setMergeReport(report); }
