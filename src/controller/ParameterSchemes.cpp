// Sets of parameters with a daily span: which there are, which is in force, and how the clock and the host change it.

#include "controller/DevicePaths.h"
#include "controller/HourMinute.h"
#include "controller/ISensorController.h"
#include "host/BRFile.h"
#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"
#include "host/XmlConfigureTool.h"

#include <charconv>
#include <cstdio>

using sensorhost::ScopedLock;

namespace {

using namespace sensorcontrol;

constexpr int MostSchemes = 100;
constexpr int FirstSchemeId = 500;
constexpr int LastSchemeId = 504;
constexpr int XmlFormat = 1;
constexpr const char* SchemeNode = "paramScheme";
constexpr const char* SchemeIndexItem = "SchemeIndex";
constexpr const char* SchemeModeItem = "SchemeMode";

XmlConfigureItem makeItem(const char* name, int value) {
    XmlConfigureItem item(XmlFormat);
    item.setProperty("name", std::string(name));
    item.setProperty("value", std::to_string(value));
    return item;
}

/// The item of that name in the file's scheme node.
bool findSchemeItem(const XmlConfigureTool& tool, const std::string& name, XmlConfigureItem& found) {
    XmlConfigureNode node;
    std::vector<XmlConfigureItem> items;
    if (!tool.getConfigNode(SchemeNode, node) || !node.getItemList(items))
        return false;
    for (const XmlConfigureItem& item : items) {
        std::string itemName;
        if (item.getProperty("name", itemName) && itemName == name) {
            found = item;
            return true;
        }
    }
    return false;
}

int readNumber(const std::string& text, int& number) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return 0;
    number = value;
    return 1;
}

/// Whether the text holds parameters at all: one that does not would be applied without a fault, and change nothing.
bool isParameterSet(const std::string& text) {
    std::map<int, int> values;
    return SensorParameterParser::parseSensorParameter(text, values) && !values.empty();
}

} // namespace

int ISensorController::setParameterToSensor(int id, int value) {
    struct Row {
        int (ISensorController::*set)(int);
        const char* failure;
    };
    static constexpr Row rows[] = {
        {&ISensorController::setEnableParam, "setEnableParam failed"},
        {&ISensorController::setParamStartTime_H, "setParamStartTime_H failed"},
        {&ISensorController::setParamStartTime_M, "setParamStartTime_M failed"},
        {&ISensorController::setParamEndTime_H, "setParamEndTime_H failed"},
        {&ISensorController::setParamEndTime_M, "setParamEndTime_M failed"},
    };
    if (id < 500 || id > 504)
        return -1;
    const Row& row = rows[id - 500];
    if ((this->*row.set)(value))
        return 1;
    ErrorPrintf("%s", row.failure);
    return 0;
}

int ISensorController::getParameterFromSensor(int id, int& value) {
    struct Row {
        int (ISensorController::*get)(int&);
        const char* failure;
    };
    static constexpr Row rows[] = {
        {&ISensorController::getEnableParam, "getEnableParam failed"},
        {&ISensorController::getParamStartTime_H, "getParamStartTime_H failed"},
        {&ISensorController::getParamStartTime_M, "getParamStartTime_M failed"},
        {&ISensorController::getParamEndTime_H, "getParamEndTime_H failed"},
        {&ISensorController::getParamEndTime_M, "getParamEndTime_M failed"},
    };
    if (id < 500 || id > 504)
        return 0;
    const Row& row = rows[id - 500];
    if ((this->*row.get)(value))
        return 1;
    ErrorPrintf("%s", row.failure);
    return 0;
}

SensorConfigFile* ISensorController::schemeFile(int scheme) const {
    const bool isThere = scheme >= 0 && static_cast<std::size_t>(scheme) < m_ConfigFiles.size();
    return isThere ? m_ConfigFiles[static_cast<std::size_t>(scheme)].get() : nullptr;
}

ParamScheme* ISensorController::schemeRecord(int scheme) const {
    const bool isThere = scheme >= 0 && static_cast<std::size_t>(scheme) < m_ParamSchemes.size();
    return isThere ? m_ParamSchemes[static_cast<std::size_t>(scheme)].get() : nullptr;
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

bool ISensorController::hasSchemeChoice() {
    // Empty is what a power cut in the moment of its creation leaves: as good as not there, and made again.
    BRFile file;
    const bool isEmpty = file.open(paths::SchemeChoiceFile, BRFile::Read) && file.getLength() == 0;
    return BRFile::isExist(paths::SchemeChoiceFile) && !isEmpty;
}

int ISensorController::createSensorXML() { return hasSchemeChoice() ? 1 : writeSchemeChoice(); }

int ISensorController::writeSchemeChoice() {
    XmlConfigureTool tool;
    if (!tool.open(paths::SchemeChoiceFile, XmlFormat, XmlConfigureTool::Create)) {
        std::printf("open %s failed\n", paths::SchemeChoiceFile);
        return 0;
    }
    tool.setRootNodeName("sensor");
    XmlConfigureNode node(SchemeNode, XmlFormat);
    node.addItem(makeItem(SchemeIndexItem, m_nParamScheme));
    node.addItem(makeItem(SchemeModeItem, m_nParamMode));
    tool.addConfigNode(node);
    if (!tool.close())
        std::printf("%s can not be written\n", paths::SchemeChoiceFile);
    return 1;
}

void ISensorController::readSchemeChoice() {
    XmlConfigureTool tool;
    if (!tool.open(paths::SchemeChoiceFile, XmlFormat, XmlConfigureTool::ReadOnly)) {
        // It has nothing to keep, and as it is every later choice would be refused.
        InitPrintf("%s is broken, made anew", paths::SchemeChoiceFile);
        writeSchemeChoice();
        return;
    }
    int scheme = m_nParamScheme;
    int mode = m_nParamMode;
    const int hasScheme = getParamSchemeFromFile(scheme);
    const int hasMode = getParamSchemeModeFromFile(mode);
    if (!hasScheme || !hasMode)
        InitPrintf("%s lacks %s", paths::SchemeChoiceFile, hasScheme ? SchemeModeItem : SchemeIndexItem);
    if (schemeFile(scheme) == nullptr)
        InitPrintf("%s: no parameter scheme %d", paths::SchemeChoiceFile, scheme);
    m_nParamScheme = scheme;
    m_nParamMode = mode;
}

int ISensorController::setValueToParamSchemeNode(const std::string& name, const std::string& value) {
    ScopedLock lock(m_SchemeChoiceMutex);
    if (!hasSchemeChoice())
        return 0;
    XmlConfigureTool tool;
    if (!tool.open(paths::SchemeChoiceFile, XmlFormat, XmlConfigureTool::Change)) {
        std::printf("open %s failed\n", paths::SchemeChoiceFile);
        return 0;
    }
    XmlConfigureItem item(XmlFormat);
    const bool isFound = findSchemeItem(tool, name, item);
    if (isFound)
        item.setProperty("value", value);
    const int closed = tool.close();
    return isFound && closed ? 1 : 0;
}

int ISensorController::getValueFromParamSchemeNode(const std::string& name, std::string& value) {
    ScopedLock lock(m_SchemeChoiceMutex);
    if (!hasSchemeChoice())
        return 0;
    XmlConfigureTool tool;
    if (!tool.open(paths::SchemeChoiceFile, XmlFormat, XmlConfigureTool::ReadOnly)) {
        std::printf("open %s failed\n", paths::SchemeChoiceFile);
        return 0;
    }
    XmlConfigureItem item(XmlFormat);
    return findSchemeItem(tool, name, item) && item.getProperty("value", value) ? 1 : 0;
}

int ISensorController::setParamSchemeToFile(int scheme) {
    return setValueToParamSchemeNode(SchemeIndexItem, std::to_string(scheme));
}

int ISensorController::setParamSchemeModeToFile(int mode) {
    return setValueToParamSchemeNode(SchemeModeItem, std::to_string(mode));
}

int ISensorController::getParamSchemeFromFile(int& scheme) {
    std::string text;
    return getValueFromParamSchemeNode(SchemeIndexItem, text) && readNumber(text, scheme) ? 1 : 0;
}

int ISensorController::getParamSchemeModeFromFile(int& mode) {
    std::string text;
    return getValueFromParamSchemeNode(SchemeModeItem, text) && readNumber(text, mode) ? 1 : 0;
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
    const SchemeState before = schemeState(scheme);
    m_nParamScheme = scheme; // before the text arrives: its span belongs to the new scheme
    if (!switchParam(scheme)) {
        restoreSchemeState(before);
        return 0;
    }
    saveChoice(scheme);
    return 1;
}

void ISensorController::saveChoice(int scheme) {
    if (!setParamSchemeToFile(scheme))
        ErrorPrintf("the choice of parameter scheme %d is not saved", scheme);
}

int ISensorController::getParamScheme(int& scheme) {
    scheme = m_nParamScheme;
    std::printf("##########ISensorController::getParamScheme %d\n", scheme);
    return 1;
}

int ISensorController::switchParam(int scheme) {
    if (schemeFile(scheme) == nullptr) {
        ErrorPrintf("switchParam failed: no parameter scheme %d", scheme);
        return 0;
    }
    // Read first: a file that can not be read leaves the span in force alone, which the next flush saves.
    std::string text;
    if (!readParamByScheme(scheme, text)) {
        ErrorPrintf("switchParam failed: parameter scheme %d can not be read", scheme);
        return 0;
    }
    if (!isParameterSet(text)) {
        ErrorPrintf("switchParam failed: the file of parameter scheme %d is broken", scheme);
        return 0;
    }
    ScopedLock lock(m_ParamMutex);
    reInitSchemeTimeMember();
    std::printf("switch param(p_Scheme=%d):\n %s\n", scheme, text.c_str());
    if (!setParameters(text)) {
        ErrorPrintf("setParameters @switchParam failed");
        return 0;
    }
    return 1;
}

int ISensorController::readParamByScheme(int scheme, std::string& text) {
    SensorConfigFile* file = schemeFile(scheme);
    return file != nullptr ? file->readParametersFromFile(text) : 0;
}

int ISensorController::readCurrentParam(int& scheme, std::string& text) {
    const BRDeviceTime clock = BRDeviceTime::getCurrentTime();
    const int now = clock.getHour() * 100 + clock.getMinute();
    for (std::size_t i = 0; i < m_ParamSchemes.size(); ++i) {
        const SchemeSpan span = m_ParamSchemes[i]->getSpan();
        if (span.flag != 0 && span.start <= now && now <= span.end) {
            m_ConfigFiles[i]->readParametersFromFile(text);
            scheme = static_cast<int>(i);
            return 1;
        }
    }
    m_pFactoryConfigFile->readParametersFromFile(text);
    scheme = -1;
    return 0;
}

/// 1 if the clock selects another scheme than the one in force; -1 if it selects none.
int ISensorController::findDueScheme(int& scheme, std::string& text) {
    if (m_nParamMode == 0)
        return 0;
    if (!readCurrentParam(scheme, text)) {
        std::puts("readCurrentParam failed");
        return -1;
    }
    return scheme != m_nParamScheme ? 1 : 0;
}

int ISensorController::paramSchemeSwitchBody() {
    int scheme = 0;
    std::string text;
    int due = findDueScheme(scheme, text);
    if (due != 1)
        return due;
    // The host may have been changing the mode, the choice or a span: what it left counts. Only a switch waits for the
    // lock, because a host's set can hold it for the whole restart of a module.
    ScopedLock lock(m_ParamMutex);
    text.clear();
    due = findDueScheme(scheme, text);
    if (due != 1)
        return due;
    if (!isParameterSet(text)) {
        ErrorPrintf("setParameters failed @paramSchemeSwitchBody");
        return -1;
    }
    const SchemeState before = schemeState(scheme);
    reInitSchemeTimeMember();
    m_nParamScheme = scheme;
    if (!setParameters(text)) {
        ErrorPrintf("setParameters failed @paramSchemeSwitchBody");
        restoreSchemeState(before);
        return -1;
    }
    saveChoice(scheme);
    std::printf("Auto switch param to:%s\n", text.c_str());
    ErrorPrintf("Auto switch  Scheme to:%d", scheme);
    return 0;
}

SchemeSpan ISensorController::spanOf(int scheme) const {
    const ParamScheme* record = schemeRecord(scheme);
    return record != nullptr ? record->getSpan() : SchemeSpan{};
}

ISensorController::SchemeState ISensorController::schemeState(int target) const {
    SchemeState state{target, spanOf(target), m_nParamScheme, m_nParamSchemeStartTime, m_nParamSchemeEndTime, {}};
    for (int id = FirstSchemeId; id <= LastSchemeId; ++id)
        if (int value = 0; m_pLastCache->getSensorValue(id, value))
            state.cached[id] = value;
    return state;
}

void ISensorController::restoreSchemeState(const SchemeState& state) {
    if (ParamScheme* record = schemeRecord(state.target))
        record->setSpan(state.targetSpan);
    m_nParamScheme = state.inForce;
    m_nParamSchemeStartTime = state.start;
    m_nParamSchemeEndTime = state.end;
    for (const auto& [id, value] : state.cached)
        m_pLastCache->setSensorValue(id, value);
}

/// The values of another scheme, or of the factory (-1), with the span and flag of the scheme in force.
void ISensorController::keepSpanInForce(int source, std::string& text) const {
    const int inForce = m_nParamScheme;
    std::map<int, int> values;
    SensorConfigFile* file = schemeFile(inForce);
    if (file == nullptr || !SensorParameterParser::parseSensorParameter(text, values))
        return;
    std::map<int, int> own;
    if (!file->readParametersFromFile(own) || own.empty()) {
        if (source < 0 && inForce == 0)
            return; // nothing is left of it: as on a fresh installation
        const SchemeSpan span = spanOf(inForce);
        own = {{500, span.flag},
               {501, span.start / 100},
               {502, span.start % 100 / 10},
               {503, span.end / 100},
               {504, span.end % 100 / 10}};
    }
    for (int id = FirstSchemeId; id <= LastSchemeId; ++id)
        if (const auto found = own.find(id); found != own.end())
            values[id] = found->second;
    text = SensorParameterParser::createSensorParameterString(values);
}

void ISensorController::reInitSchemeTimeMember() {
    m_nParamSchemeStartTime = 0;
    m_pLastCache->setSensorValue(501, 0);
    m_pLastCache->setSensorValue(502, 0);
    m_nParamSchemeEndTime = NoEndTime;
    m_pLastCache->setSensorValue(503, NoEndTime / 100);
    m_pLastCache->setSensorValue(504, 0);
}

int ISensorController::setParamSchemeEnableFlag(int scheme, int flag) {
    std::printf("set p_nScheme:%d flag=%d\n", scheme, flag);
    if (ParamScheme* record = schemeRecord(scheme))
        record->setEnableFlag(flag);
    return 1;
}

int ISensorController::setParamSchemeStartTime(int scheme, int time) {
    std::printf("set p_nScheme:%d starttime=%d\n", scheme, time);
    if (ParamScheme* record = schemeRecord(scheme))
        record->setStartTime(time);
    return 1;
}

int ISensorController::setParamSchemeEndTime(int scheme, int time) {
    std::printf("set p_nScheme:%d endtime=%d\n", scheme, time);
    if (ParamScheme* record = schemeRecord(scheme))
        record->setEndTime(time);
    return 1;
}

int ISensorController::setEnableParam(int flag) { return setParamSchemeEnableFlag(m_nParamScheme, flag); }

void ISensorController::storeSpanStart(int time) {
    m_nParamSchemeStartTime = time;
    setParamSchemeStartTime(m_nParamScheme, time);
    std::printf("set start time:%d\n", time);
}

void ISensorController::storeSpanEnd(int time) {
    m_nParamSchemeEndTime = time;
    // A new text's start of 00:00 needs no setter: its end, which always has one, completes the record.
    if (ParamScheme* record = schemeRecord(m_nParamScheme))
        record->setStartTime(m_nParamSchemeStartTime);
    setParamSchemeEndTime(m_nParamScheme, time);
    std::printf("set end time:%d\n", time);
}

int ISensorController::setParamStartTime_H(int hour) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    const int time = hourMinute(hour, start % 100);
    std::printf("setParamStartTime_H %d,start=%d,end=%d\n", hour, start, end);
    if (isSpanChecked() && time > end) {
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", time, end);
        return 0;
    }
    if (hour == 24 && start % 100 > 0) {
        ErrorPrintf("setParamStartTime_H failed:startTime > 24H,m_nParamSchemeStartTime=%d\n", start);
        return 0;
    }
    storeSpanStart(time);
    return 1;
}

int ISensorController::setParamStartTime_M(int tensOfMinutes) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    const int time = hourMinute(start / 100, tensOfMinutes * 10LL);
    std::printf("setParamStartTime_M %d,start=%d,end=%d\n", tensOfMinutes, start, end);
    if (isSpanChecked() && time > end) {
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", time, end);
        return 0;
    }
    if (tensOfMinutes > 0 && start / 100 == 24) {
        ErrorPrintf("setParamStartTime_M failed:startTime > 24H,m_nParamSchemeStartTime=%d,p_nParamTime_M=%d\n", start,
                    tensOfMinutes);
        return 0;
    }
    storeSpanStart(time);
    return 1;
}

int ISensorController::setParamEndTime_H(int hour) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    const int time = hourMinute(hour, end % 100);
    std::printf("setParamEndTime_H %d,start=%d,end=%d\n", hour, start, end);
    // While no end minute has arrived, the hour alone is compared.
    const bool isBeforeStart = end == NoEndTime ? hour < start / 100 : time < start;
    if (isSpanChecked() && isBeforeStart) {
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", start, time);
        return 0;
    }
    if (hour == 24 && end % 100 > 0) {
        ErrorPrintf("failed:endTime > 24H, m_nParamSchemeEndTime=%d\n", end);
        return 0;
    }
    storeSpanEnd(time);
    return 1;
}

int ISensorController::setParamEndTime_M(int tensOfMinutes) {
    const int start = m_nParamSchemeStartTime;
    const int end = m_nParamSchemeEndTime;
    const int time = hourMinute(end / 100, tensOfMinutes * 10LL);
    std::printf("setParamEndTime_M %d,start=%d,end=%d\n", tensOfMinutes, start, end);
    if (isSpanChecked() && time <= start) {
        ErrorPrintf("failed:startTime(%d) > endTime(%d)\n", start, time);
        return 0;
    }
    if (tensOfMinutes > 0 && end / 100 == 24) {
        ErrorPrintf("failed:endTime > 24H,m_nParamSchemeEndTime=%d,p_nParamTime_M=%d\n", end, tensOfMinutes);
        return 0;
    }
    storeSpanEnd(time);
    return 1;
}
