// The path of a value between the host, the module and the parameter files.

#include "controller/ISensorController.h"
#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"

#include <cstdio>

using sensorhost::ScopedLock;

int ISensorController::setParameters(const std::string& text) {
    ScopedLock lock(m_ParamMutex);
    m_pCurrentCache->clear();
    if (!m_pCurrentCache->setSensorValues(text))
        ErrorPrintf("setParameters: no parameter string: %s", text.c_str());

    int result = 1;
    int id = 0;
    int value = 0;
    for (int more = m_pCurrentCache->getFirstIdValue(id, value); more;
         more = m_pCurrentCache->getNextIdValue(id, value)) {
        if (!setParameter(id, value)) {
            ErrorPrintf("setParameter (%d,%d) failed", id, value);
            result = 0;
        }
    }
    return result;
}

int ISensorController::setParameter(int id, int value) {
    // The version entries of a parameter file pass through with its text.
    if (id == SensorConfigFile::VersionId || id == SensorConfigFile::Version2Id)
        return 1;
    if (m_pLastCache->isEqualToCache(id, value))
        return 1;
    if (setParameterToSensor(id, value) != 1) {
        ErrorPrintf("setParameterToSensor (%d,%d) failed", id, value);
        return 0;
    }

    int stored = 0;
    switch (m_pIdManager->getIdType(id)) {
    case IdManager::Common:
    case IdManager::Especial:
        stored = m_pLastCache->setSensorValue(id, value);
        break;
    case IdManager::SetOnly:
        return 1;
    case IdManager::KeepDefault: {
        int first = 0;
        if (m_pLastCache->getSensorValue(id, first))
            return 1;
        stored = m_pLastCache->setSensorValue(id, value);
        break;
    }
    default:
        ErrorPrintf("id type is unknow");
        return 0;
    }
    if (!stored) {
        ErrorPrintf("setValue to cache failed");
        return 0;
    }
    return 1;
}

int ISensorController::getParameter(int id, int& value) {
    return m_pCurrentCache->getSensorValue(id, value) || m_pLastCache->getSensorValue(id, value) ? 1 : 0;
}

int ISensorController::getParameters(const std::string& ids, std::string& result) {
    ScopedLock lock(m_ParamMutex);
    return m_pLastCache->getSensorValues(ids, result);
}

int ISensorController::getAllParametersFromSensor(std::string& result) {
    std::set<int> common;
    std::set<int> especial;
    std::set<int> keepDefault;
    if (!m_pIdManager->getCommonIdList(common) || !m_pIdManager->getEspecialIdList(especial) ||
        !m_pIdManager->getKeepDefaultValueList(keepDefault))
        return 0;

    SensorCache values;
    for (const auto* ids : {&common, &especial, &keepDefault}) {
        for (const int id : *ids) {
            int value = 0;
            if (!getParameterFromSensor(id, value)) {
                ErrorPrintf("getParameterFromSensor (%d) failed", id);
                return 0;
            }
            values.setSensorValue(id, value);
        }
    }
    return values.getAllSensorValues(result);
}

int ISensorController::getAllParameters(std::string& result) {
    if (!stopPTZ()) {
        ErrorPrintf("stop PTZ @getAllParameters failed");
        return 0;
    }
    // From the read on: a value that another thread sets in between must not be undone by the reload.
    ScopedLock lock(m_ParamMutex);
    std::string text;
    if (!m_pLastCache->getAllSensorValues(text)) {
        ErrorPrintf("getAllSensorValues failed");
        return 0;
    }
    const std::string before = text;
    if (!UpdateParameters(text)) {
        ErrorPrintf("UpdateParameters() failed");
        return 0;
    }
    // An unchanged text is in the cache already. To load it all the same would leave the cache empty for a moment, in
    // which getParameter finds nothing.
    if (text != before) {
        std::map<int, int> values;
        if (!SensorParameterParser::parseSensorParameter(text, values)) {
            ErrorPrintf("setSensorValues failed");
            return 0;
        }
        m_pLastCache->clear();
        m_pLastCache->setSensorValues(text);
        std::puts("save sensor parameter");
        flush();
    }
    result = text;
    return 1;
}

void ISensorController::UpdateParametersIdValue(std::string& text, int id, int value) {
    const std::size_t begin = text.find("(" + std::to_string(id));
    if (begin == std::string::npos)
        return;
    const std::size_t end = text.find(')', begin);
    if (end == std::string::npos)
        return;
    std::string group;
    SensorParameterParser::appendGroup(id, value, group);
    text.replace(begin, end - begin + 1, group);
}

int ISensorController::flush() {
    // In the midst of a switch the cache holds the values of two schemes.
    ScopedLock lock(m_ParamMutex);
    std::set<int> commonIds;
    std::set<int> especialIds;
    if (!m_pIdManager->getCommonIdList(commonIds) || !m_pIdManager->getEspecialIdList(especialIds))
        return 0;
    std::string common;
    if (!m_pLastCache->getSensorValues(commonIds, common)) {
        ErrorPrintf("getCommonIdValues from Last Cache failed");
        return 0;
    }
    std::string especial;
    if (!m_pLastCache->getSensorValues(especialIds, especial)) {
        ErrorPrintf("getEspecialIdValues from Last Cache failed");
        return 0;
    }

    if (!m_pFactoryConfigFile->modifyParameters(especial)) {
        ErrorPrintf("flush failed: %s", m_pFactoryConfigFile->getFilePath().c_str());
        return 0;
    }
    const int scheme = m_nParamScheme;
    std::printf("save param %d\n", scheme + 1);
    SensorConfigFile* file = schemeFile(scheme);
    if (file == nullptr) {
        ErrorPrintf("flush failed: no parameter scheme %d", scheme);
        return 0;
    }
    if (!file->saveParametersToFile(common + especial) || !m_pEspecialConfigFile->saveParametersToFile(especial)) {
        ErrorPrintf("flush failed: the files of parameter scheme %d", scheme);
        return 0;
    }
    return 1;
}

int ISensorController::loadCurrentCache(const std::string& text) {
    m_pCurrentCache->clear();
    return !text.empty() && m_pCurrentCache->setSensorValues(text) ? 1 : 0;
}

int ISensorController::resetParameters() {
    ScopedLock lock(m_ParamMutex);
    m_bisReset = true;
    std::string text;
    if (!m_pFactoryConfigFile->readParametersFromFile(text) || !loadCurrentCache(text)) {
        ErrorPrintf("read factory setting failed");
        return 0;
    }
    std::printf("reset:%s\n", text.c_str());
    const SchemeState before = schemeState(m_nParamScheme);
    reInitSchemeTimeMember();
    if (!setParameters(text)) {
        ErrorPrintf("setParameters @resetParameters failed");
        restoreSchemeState(before);
        return 0;
    }
    // Disabled in the one write: a power cut after a first one would leave every scheme enabled.
    std::map<int, int> disabled;
    SensorParameterParser::parseSensorParameter(text, disabled);
    if (const auto flag = disabled.find(500); flag != disabled.end())
        flag->second = 0;
    for (std::size_t i = 0; i < m_ConfigFiles.size(); ++i)
        i == 0 ? m_ConfigFiles[i]->saveParametersToFile(text) : m_ConfigFiles[i]->saveParametersToFile(disabled);
    if (m_nParamScheme > 0 && setEnableParam(0))
        m_pLastCache->setSensorValue(500, 0); // as in its file, or the next flush would enable it
    m_bisReset = false;
    std::puts("resetParameters success");
    return 1;
}

int ISensorController::resetToLastParameters() {
    ScopedLock lock(m_ParamMutex);
    m_bisReset = true;
    std::string text;
    if (!readParamByScheme(m_nParamScheme, text) || !loadCurrentCache(text)) {
        ErrorPrintf("read user setting failed");
        return 0;
    }
    if (!setParameters(text)) {
        ErrorPrintf("setParameters @resetToLastParameters failed");
        return 0;
    }
    if (!flush()) {
        ErrorPrintf("flush @resetToLastParameters false\n");
        return 0;
    }
    m_bisReset = false;
    return 1;
}
