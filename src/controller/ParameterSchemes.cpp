// Sets of parameters with a daily span: which there are, which is in force, and how the clock and the host change it.

#include "controller/BaseParameters.h"
#include "controller/ControllerRooms.h"
#include "controller/DailySpan.h"
#include "controller/Recorder.h"
#include "controller/SchemeParameters.h"
#include "host/DevicePaths.h"
#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"
#include "host/XmlConfigureTool.h"

#include <cstdio>

using namespace sensorcontrol;
using sensorhost::ScopedLock;

namespace {

constexpr int MostSchemes = 100;
constexpr int XmlFormat = 1;

} // namespace

bool ISensorController::Rooms::isParameterSet(const std::string& text) {
    std::map<int, int> values;
    return SensorParameterParser::parseSensorParameter(text, values) && !values.empty();
}

int ISensorController::setParameterToSensor(int id, int value) {
    const BaseParameter* row = findBaseParameter(id);
    if (row == nullptr)
        return -1;
    if ((this->*row->set)(value))
        return 1;
    ErrorPrintf("set%s failed", row->name);
    return 0;
}

int ISensorController::getParameterFromSensor(int id, int& value) {
    const BaseParameter* row = findBaseParameter(id);
    if (row == nullptr)
        return 0;
    if ((this->*row->get)(value))
        return 1;
    ErrorPrintf("get%s failed", row->name);
    return 0;
}

ParamScheme* ISensorController::Rooms::record(int scheme) const {
    const bool isThere = scheme >= 0 && static_cast<std::size_t>(scheme) < c.m_ParamSchemes.size();
    return isThere ? c.m_ParamSchemes[static_cast<std::size_t>(scheme)].get() : nullptr;
}

int ISensorController::getParamSchemeNum(int& count) {
    XmlConfigureTool tool;
    if (!tool.open(paths::SchemeCountFile, XmlFormat, XmlConfigureTool::ReadOnly)) {
        std::printf("open %s failed\n", "sensorAbility.xml");
        return 0;
    }
    std::vector<XmlConfigureNode> nodes;
    std::vector<XmlConfigureItem> items;
    int value = 0;
    if (!tool.getAllConfigNodeList(nodes) || nodes.empty() || !nodes.front().getItemList(items) || items.empty() ||
        !items.front().getProperty("value", value)) {
        std::printf("%s has no number of schemes\n", "sensorAbility.xml");
        return 0;
    }
    count = value;
    std::printf("p_nSchemeNum=%d\n", count);
    return 1;
}

int ISensorController::initParamSchemeList() {
    if (!m_ConfigFiles.empty())
        return 1; // others may be walking it
    int count = 0;
    if (!getParamSchemeNum(count)) {
        InitPrintf("no parameter schemes: sensorAbility.xml does not tell how many");
        return 0;
    }
    for (int i = 1; i <= count; ++i) {
        if (i > MostSchemes) {
            InitPrintf("sensorAbility.xml asks for %d parameter schemes, %d is the limit", count, MostSchemes);
            return 0;
        }
        m_ConfigFiles.push_back(
            std::make_unique<SensorConfigFile>(paths::SchemeFilePrefix + std::to_string(i) + ".cfg"));
        m_ParamSchemes.push_back(std::make_unique<ParamScheme>());
    }
    return 1;
}

int ISensorController::createSensorXML() { return m_pRooms->choice.create(m_nParamScheme, m_nParamMode, false); }

void ISensorController::Rooms::readSchemeChoice() {
    if (!choice.mayBeRead()) {
        c.InitPrintf("%s was not readable, left alone", paths::SchemeChoiceFile);
        return;
    }
    if (!choice.isSound()) {
        // It has nothing to keep, and as it is every later choice would be refused.
        c.InitPrintf("%s is broken, made anew", paths::SchemeChoiceFile);
        choice.create(c.m_nParamScheme, c.m_nParamMode, true);
        return;
    }
    int scheme = c.m_nParamScheme;
    int mode = c.m_nParamMode;
    const int hasScheme = c.getParamSchemeFromFile(scheme);
    const int hasMode = c.getParamSchemeModeFromFile(mode);
    if (!hasScheme || !hasMode)
        c.InitPrintf("%s lacks %s", paths::SchemeChoiceFile,
                     hasScheme ? SchemeChoice::ModeName : SchemeChoice::IndexName);
    if (files.find(scheme) == nullptr)
        c.InitPrintf("%s: no parameter scheme %d", paths::SchemeChoiceFile, scheme);
    c.m_nParamScheme = scheme;
    c.m_nParamMode = mode;
}

int ISensorController::setValueToParamSchemeNode(const std::string& name, const std::string& value) {
    return m_pRooms->choice.setValue(name, value);
}

int ISensorController::getValueFromParamSchemeNode(const std::string& name, std::string& value) {
    return m_pRooms->choice.getValue(name, value);
}

int ISensorController::setParamSchemeToFile(int scheme) {
    return setValueToParamSchemeNode(SchemeChoice::IndexName, std::to_string(scheme));
}

int ISensorController::setParamSchemeModeToFile(int mode) {
    return setValueToParamSchemeNode(SchemeChoice::ModeName, std::to_string(mode));
}

int ISensorController::getParamSchemeFromFile(int& scheme) {
    return m_pRooms->choice.getNumber(SchemeChoice::IndexName, scheme);
}

int ISensorController::getParamSchemeModeFromFile(int& mode) {
    return m_pRooms->choice.getNumber(SchemeChoice::ModeName, mode);
}

int ISensorController::setParamMode(int mode) {
    std::printf("ISensorController::setParamMode:%d\n", mode);
    ScopedLock lock(m_ParamMutex); // no automatic switch is under way when the host has taken over
    if (!setParamSchemeModeToFile(mode)) {
        ErrorPrintf("setParamSchemeModeToFile @setParamMode failed");
        return 0;
    }
    m_nParamMode = mode;
    return 1;
}

int ISensorController::getParamMode(int& mode) {
    mode = m_nParamMode;
    std::printf("ISensorController::getParamMode:%d\n", mode);
    return 1;
}

int ISensorController::setParamScheme(int scheme) {
    std::printf("#########ISensorController::setParamScheme %d\n", scheme);
    ScopedLock lock(m_ParamMutex);
    const Rooms::SchemeState before = m_pRooms->schemeState(scheme);
    m_nParamScheme = scheme; // before the text arrives: its span belongs to the new scheme
    if (!switchParam(scheme)) {
        m_pRooms->restore(before);
        return 0;
    }
    m_pRooms->announceScheme(scheme);
    return 1;
}

void ISensorController::Rooms::announceScheme(int scheme) {
    if (!c.setParamSchemeToFile(scheme))
        c.ErrorPrintf("the choice of parameter scheme %d is not saved", scheme);
    journal.scheme(scheme);
}

int ISensorController::getParamScheme(int& scheme) {
    scheme = m_nParamScheme;
    std::printf("##########ISensorController::getParamScheme %d\n", scheme);
    return 1;
}

int ISensorController::switchParam(int scheme) {
    if (m_pRooms->files.find(scheme) == nullptr) {
        ErrorPrintf("switchParam failed: no parameter scheme %d", scheme);
        return 0;
    }
    // Read first: a file that can not be read leaves the span in force alone, which the next flush saves.
    std::string text;
    if (!readParamByScheme(scheme, text)) {
        ErrorPrintf("switchParam failed: parameter scheme %d can not be read", scheme);
        return 0;
    }
    if (!Rooms::isParameterSet(text)) {
        ErrorPrintf("switchParam failed: the file of parameter scheme %d is broken", scheme);
        return 0;
    }
    ScopedLock lock(m_ParamMutex);
    reInitSchemeTimeMember();
    std::printf("switch param(p_Scheme=%d):\n %s\n", scheme, text.c_str());
    if (OperationReport* report = recorder::report())
        report->source = m_pRooms->files.find(scheme)->getFilePath();
    if (!setParameters(text)) {
        ErrorPrintf("setParameters @switchParam failed");
        return 0;
    }
    return 1;
}

int ISensorController::readParamByScheme(int scheme, std::string& text) {
    SensorConfigFile* file = m_pRooms->files.find(scheme);
    return file != nullptr ? file->readParametersFromFile(text) : 0;
}

int ISensorController::Rooms::selectByClock() const {
    const BRDeviceTime clock = BRDeviceTime::getCurrentTime();
    const int now = hourMinute(clock.getHour(), clock.getMinute());
    for (std::size_t i = 0; i < c.m_ParamSchemes.size(); ++i) {
        const SchemeSpan span = c.m_ParamSchemes[i]->getSpan();
        if (span.flag != 0 && span::covers(span.start, span.end, now))
            return static_cast<int>(i);
    }
    return -1;
}

int ISensorController::readCurrentParam(int& scheme, std::string& text) {
    scheme = m_pRooms->selectByClock();
    SensorConfigFile* file = m_pRooms->files.find(scheme);
    (file != nullptr ? *file : *m_pFactoryConfigFile).readParametersFromFile(text);
    return file != nullptr ? 1 : 0;
}

int ISensorController::paramSchemeSwitchBody() {
    // The files are opened only when there is something to switch.
    if (m_nParamMode == 0)
        return 0;
    const int due = m_pRooms->selectByClock();
    if (due < 0) {
        std::puts("readCurrentParam failed");
        return -1;
    }
    if (due == m_nParamScheme)
        return 0;
    // The host may have been changing the mode, the choice or a span: what it left counts. Only a switch waits for the
    // lock, because a host's set can hold it for the whole restart of a module.
    ScopedLock lock(m_ParamMutex);
    if (m_nParamMode == 0 || m_pRooms->selectByClock() == m_nParamScheme)
        return 0;
    int scheme = 0;
    std::string text;
    if (!readCurrentParam(scheme, text)) {
        std::puts("readCurrentParam failed");
        return -1;
    }
    if (!Rooms::isParameterSet(text)) {
        ErrorPrintf("setParameters failed @paramSchemeSwitchBody");
        return -1;
    }
    const Rooms::SchemeState before = m_pRooms->schemeState(scheme);
    reInitSchemeTimeMember();
    m_nParamScheme = scheme;
    if (!setParameters(text)) {
        ErrorPrintf("setParameters failed @paramSchemeSwitchBody");
        m_pRooms->restore(before);
        return -1;
    }
    m_pRooms->announceScheme(scheme);
    std::printf("Auto switch param to:%s\n", text.c_str());
    ErrorPrintf("Auto switch  Scheme to:%d", scheme);
    return 0;
}

SchemeSpan ISensorController::Rooms::spanOf(int scheme) const {
    const ParamScheme* found = record(scheme);
    return found != nullptr ? found->getSpan() : SchemeSpan{};
}

ISensorController::Rooms::SchemeState ISensorController::Rooms::schemeState(int target) const {
    SchemeState state{target, spanOf(target), c.m_nParamScheme, c.m_nParamSchemeStartTime, c.m_nParamSchemeEndTime, {}};
    for (int id = scheme::FirstId; id <= scheme::LastId; ++id)
        if (int value = 0; c.m_pLastCache->getSensorValue(id, value))
            state.cached[id] = value;
    return state;
}

void ISensorController::Rooms::restore(const SchemeState& state) {
    if (ParamScheme* target = record(state.target))
        target->setSpan(state.targetSpan);
    c.m_nParamScheme = state.inForce;
    c.m_nParamSchemeStartTime = state.start;
    c.m_nParamSchemeEndTime = state.end;
    for (const auto& [id, value] : state.cached)
        c.m_pLastCache->setSensorValue(id, value);
}

/// The values of another scheme, or of the factory (-1), with the span and flag of the scheme in force.
void ISensorController::Rooms::keepSpanInForce(int source, std::string& text) const {
    const int inForce = c.m_nParamScheme;
    std::map<int, int> values;
    if (files.find(inForce) == nullptr || !SensorParameterParser::parseSensorParameter(text, values))
        return;
    std::map<int, int> own = files.values(inForce);
    if (own.empty()) {
        if (source < 0 && inForce == 0)
            return; // nothing is left of it: as on a fresh installation
        const SchemeSpan span = spanOf(inForce);
        own = {{scheme::EnableId, span.flag},
               {scheme::StartHourId, span.start / 100},
               {scheme::StartMinuteId, span.start % 100 / 10},
               {scheme::EndHourId, span.end / 100},
               {scheme::EndMinuteId, span.end % 100 / 10}};
    }
    for (int id = scheme::FirstId; id <= scheme::LastId; ++id)
        if (const auto found = own.find(id); found != own.end())
            values[id] = found->second;
    text = SensorParameterParser::createSensorParameterString(values);
}

void ISensorController::reInitSchemeTimeMember() {
    m_nParamSchemeStartTime = 0;
    m_pLastCache->setSensorValue(scheme::StartHourId, 0);
    m_pLastCache->setSensorValue(scheme::StartMinuteId, 0);
    m_nParamSchemeEndTime = span::NoEnd;
    m_pLastCache->setSensorValue(scheme::EndHourId, span::NoEnd / 100);
    m_pLastCache->setSensorValue(scheme::EndMinuteId, 0);
}

int ISensorController::setParamSchemeEnableFlag(int scheme, int flag) {
    std::printf("set p_nScheme:%d flag=%d\n", scheme, flag);
    if (ParamScheme* record = m_pRooms->record(scheme))
        record->setEnableFlag(flag);
    return 1;
}

int ISensorController::setParamSchemeStartTime(int scheme, int time) {
    std::printf("set p_nScheme:%d starttime=%d\n", scheme, time);
    if (ParamScheme* record = m_pRooms->record(scheme))
        record->setStartTime(time);
    return 1;
}

int ISensorController::setParamSchemeEndTime(int scheme, int time) {
    std::printf("set p_nScheme:%d endtime=%d\n", scheme, time);
    if (ParamScheme* record = m_pRooms->record(scheme))
        record->setEndTime(time);
    return 1;
}

int ISensorController::setEnableParam(int flag) { return setParamSchemeEnableFlag(m_nParamScheme, flag); }

void ISensorController::Rooms::storeSpanStart(int time) {
    c.m_nParamSchemeStartTime = time;
    c.setParamSchemeStartTime(c.m_nParamScheme, time);
    std::printf("set start time:%d\n", time);
}

void ISensorController::Rooms::storeSpanEnd(int time) {
    c.m_nParamSchemeEndTime = time;
    // A new text's start of 00:00 needs no setter: its end, which always has one, completes the record.
    if (ParamScheme* inForce = record(c.m_nParamScheme))
        inForce->setStartTime(c.m_nParamSchemeStartTime);
    c.setParamSchemeEndTime(c.m_nParamScheme, time);
    std::printf("set end time:%d\n", time);
}

int ISensorController::setParamStartTime_H(int hour) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    std::printf("setParamStartTime_H %d,start=%d,end=%d\n", hour, start, end);
    const span::Change change = span::startHour(hour, start, end, m_pRooms->isSpanChecked());
    switch (change.fault) {
    case span::Fault::StartAfterEnd:
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", change.time, end);
        return 0;
    case span::Fault::BeyondMidnight:
        ErrorPrintf("setParamStartTime_H failed:startTime > 24H,m_nParamSchemeStartTime=%d\n", start);
        return 0;
    case span::Fault::None:
        break;
    }
    m_pRooms->storeSpanStart(change.time);
    return 1;
}

int ISensorController::setParamStartTime_M(int tensOfMinutes) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    std::printf("setParamStartTime_M %d,start=%d,end=%d\n", tensOfMinutes, start, end);
    const span::Change change = span::startMinute(tensOfMinutes, start, end, m_pRooms->isSpanChecked());
    switch (change.fault) {
    case span::Fault::StartAfterEnd:
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", change.time, end);
        return 0;
    case span::Fault::BeyondMidnight:
        ErrorPrintf("setParamStartTime_M failed:startTime > 24H,m_nParamSchemeStartTime=%d,p_nParamTime_M=%d\n", start,
                    tensOfMinutes);
        return 0;
    case span::Fault::None:
        break;
    }
    m_pRooms->storeSpanStart(change.time);
    return 1;
}

int ISensorController::setParamEndTime_H(int hour) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    std::printf("setParamEndTime_H %d,start=%d,end=%d\n", hour, start, end);
    const span::Change change = span::endHour(hour, start, end, m_pRooms->isSpanChecked());
    switch (change.fault) {
    case span::Fault::StartAfterEnd:
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", start, change.time);
        return 0;
    case span::Fault::BeyondMidnight:
        ErrorPrintf("failed:endTime > 24H, m_nParamSchemeEndTime=%d\n", end);
        return 0;
    case span::Fault::None:
        break;
    }
    m_pRooms->storeSpanEnd(change.time);
    return 1;
}

int ISensorController::setParamEndTime_M(int tensOfMinutes) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    std::printf("setParamEndTime_M %d,start=%d,end=%d\n", tensOfMinutes, start, end);
    const span::Change change = span::endMinute(tensOfMinutes, start, end, m_pRooms->isSpanChecked());
    switch (change.fault) {
    case span::Fault::StartAfterEnd:
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", start, change.time);
        return 0;
    case span::Fault::BeyondMidnight:
        ErrorPrintf("failed:endTime > 24H,m_nParamSchemeEndTime=%d,p_nParamTime_M=%d\n", end, tensOfMinutes);
        return 0;
    case span::Fault::None:
        break;
    }
    m_pRooms->storeSpanEnd(change.time);
    return 1;
}
