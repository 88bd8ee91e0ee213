// The path of a value between the host, the module and the parameter files.

#include "controller/ControllerRooms.h"
#include "controller/Recorder.h"
#include "controller/SchemeParameters.h"
#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"

#include <cstdio>
#include <map>
#include <set>

using namespace sensorcontrol;
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
        if (m_pRooms->isEnding())
            return 0;
        if (!setParameter(id, value)) {
            const recorder::LogOnly outcomeTellsIt;
            ErrorPrintf("setParameter (%d,%d) failed", id, value);
            result = 0;
        }
        m_pRooms->advance();
    }
    return result;
}

int ISensorController::setParameter(int id, int value) {
    // The version entries of a parameter file pass through with its text.
    if (id == SensorConfigFile::VersionId || id == SensorConfigFile::Version2Id)
        return 1;
    if (m_pLastCache->isEqualToCache(id, value)) {
        recorder::unchanged(id, value);
        return 1;
    }
    recorder::ParameterInHand parameter(id, value);
    const int isTaken = m_pRooms->set(id, value);
    const OperationReport::Parameter& outcome = parameter.finish(isTaken != 0);
    if (!isTaken)
        m_pRooms->journal.parameterNotTaken(outcome);
    return isTaken;
}

int ISensorController::Rooms::set(int id, int value) {
    const int result = c.setParameterToSensor(id, value);
    if (result == 1)
        return remember(id, value);
    if (result == -1)
        recorder::leaveUnserved();
    const recorder::LogOnly outcomeTellsIt;
    c.ErrorPrintf("setParameterToSensor (%d,%d) failed", id, value);
    return 0;
}

int ISensorController::Rooms::remember(int id, int value) {
    int stored = 0;
    switch (c.m_pIdManager->getIdType(id)) {
    case IdManager::Common:
    case IdManager::Especial:
        stored = c.m_pLastCache->setSensorValue(id, value);
        break;
    case IdManager::SetOnly:
        return 1;
    case IdManager::KeepDefault: {
        int first = 0;
        if (c.m_pLastCache->getSensorValue(id, first))
            return 1;
        stored = c.m_pLastCache->setSensorValue(id, value);
        break;
    }
    default:
        c.ErrorPrintf("id type is unknow");
        return 0;
    }
    if (!stored) {
        c.ErrorPrintf("setValue to cache failed");
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

    m_pRooms->enterStage(Rooms::Stage::FactoryValues,
                         static_cast<int>(common.size() + especial.size() + keepDefault.size()));
    SensorCache values;
    for (const auto* ids : {&common, &especial, &keepDefault}) {
        for (const int id : *ids) {
            int value = 0;
            if (m_pRooms->isEnding() || !getParameterFromSensor(id, value)) {
                ErrorPrintf("getParameterFromSensor (%d) failed", id);
                return 0;
            }
            values.setSensorValue(id, value);
            m_pRooms->advance();
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
    text.replace(begin, end - begin + 1, SensorParameterParser::createSensorParameterString({{id, value}}));
}

int ISensorController::Rooms::collect(const std::set<int>& ids, std::string& text, const char* failure) {
    if (c.m_pLastCache->getSensorValues(ids, text))
        return 1;
    c.ErrorPrintf("%s", failure);
    for (const int id : ids)
        if (int value = 0; !c.m_pLastCache->getSensorValue(id, value))
            c.ErrorPrintf("parameter %d has no value: the module never took one", id);
    return 0;
}

int ISensorController::flush() {
    // In the midst of a switch the cache holds the values of two schemes.
    ScopedLock lock(m_ParamMutex);
    std::set<int> commonIds;
    std::set<int> especialIds;
    if (!m_pIdManager->getCommonIdList(commonIds) || !m_pIdManager->getEspecialIdList(especialIds))
        return 0;
    std::string common;
    std::string especial;
    if (!m_pRooms->collect(commonIds, common, "getCommonIdValues from Last Cache failed") ||
        !m_pRooms->collect(especialIds, especial, "getEspecialIdValues from Last Cache failed"))
        return 0;
    return m_pRooms->files.save(m_nParamScheme, common, especial);
}

int ISensorController::Rooms::loadCurrentCache(const std::string& text) {
    if (!isParameterSet(text))
        return 0;
    c.m_pCurrentCache->clear();
    return c.m_pCurrentCache->setSensorValues(text);
}

int ISensorController::resetParameters() {
    ScopedLock lock(m_ParamMutex);
    m_bisReset = true;
    std::string text;
    if (!m_pFactoryConfigFile->readParametersFromFile(text) || !m_pRooms->loadCurrentCache(text)) {
        ErrorPrintf("read factory setting failed");
        return 0;
    }
    std::printf("reset:%s\n", text.c_str());
    if (OperationReport* report = recorder::report())
        report->source = m_pFactoryConfigFile->getFilePath();
    const Rooms::SchemeState before = m_pRooms->schemeState(m_nParamScheme);
    reInitSchemeTimeMember();
    if (!setParameters(text)) {
        ErrorPrintf("setParameters @resetParameters failed");
        m_pRooms->restore(before);
        return 0;
    }
    m_pRooms->files.saveFactoryText(text);
    if (m_nParamScheme > 0 && setEnableParam(0))
        m_pLastCache->setSensorValue(scheme::EnableId, 0); // as in its file, or the next flush would enable it
    m_bisReset = false;
    std::puts("resetParameters success");
    return 1;
}

int ISensorController::resetToLastParameters() {
    ScopedLock lock(m_ParamMutex);
    m_bisReset = true;
    std::string text;
    if (!readParamByScheme(m_nParamScheme, text) || !m_pRooms->loadCurrentCache(text)) {
        ErrorPrintf("read user setting failed");
        return 0;
    }
    if (OperationReport* report = recorder::report())
        report->source = m_pRooms->files.find(m_nParamScheme)->getFilePath();
    const Rooms::SchemeState before = m_pRooms->schemeState(m_nParamScheme);
    if (!setParameters(text)) {
        ErrorPrintf("setParameters @resetToLastParameters failed");
        m_pRooms->restore(before);
        return 0;
    }
    if (!flush()) {
        ErrorPrintf("flush @resetToLastParameters false\n");
        return 0;
    }
    m_bisReset = false;
    return 1;
}
