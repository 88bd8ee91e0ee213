#include "SchemeDesk.h"

#include "Explanation.h"
#include "Interrupt.h"
#include "StateFolder.h"
#include "controller/SchemeParameters.h"
#include "params/SensorConfigFile.h"

#include <algorithm>
#include <chrono>

namespace sensorctl {

namespace {

namespace scheme = sensorcontrol::scheme;

constexpr std::chrono::milliseconds PollSpan{50};
constexpr int PollCount = 100;

std::string group(int id, int value) { return '(' + std::to_string(id) + ',' + std::to_string(value) + ')'; }

std::string timeGroups(int hourId, int minutes) {
    return group(hourId, minutes / 60) + group(hourId + 1, minutes % 60 / 10);
}

int minutesOf(const std::map<int, int>& values, int hourId) {
    const auto valueOf = [&values](int id) {
        const auto found = values.find(id);
        return found != values.end() ? found->second : 0;
    };
    return valueOf(hourId) * 60 + valueOf(hourId + 1) * 10;
}

/// "(500)(501)...".
std::string schemeIds() {
    std::string text;
    for (int id = scheme::FirstId; id <= scheme::LastId; ++id)
        text += '(' + std::to_string(id) + ')';
    return text;
}

std::string name(int scheme) { return "scheme " + std::to_string(scheme); }

} // namespace

SchemeDesk::SchemeDesk(ISensorController& controller, const Parameters& parameters)
    : m_Controller(controller), m_Parameters(parameters) {
    int count = 0;
    // What the installation's file asks for; the library makes no more than a hundred.
    if (m_Controller.getParamSchemeNum(count))
        m_nCount = std::clamp(count, 0, 100);
}

int SchemeDesk::inForce() const {
    int scheme = -1;
    m_Controller.getParamScheme(scheme);
    return m_nCount > 0 ? scheme : -1;
}

bool SchemeDesk::isAutomatic() const {
    int mode = 0;
    m_Controller.getParamMode(mode);
    return mode != 0;
}

std::vector<SchemeDesk::Scheme> SchemeDesk::list() const {
    const int current = inForce();
    int due = -1;
    std::string text;
    m_Controller.readCurrentParam(due, text);
    std::vector<Scheme> schemes;
    for (int i = 0; i < m_nCount; ++i) {
        Scheme scheme{i, StateFolder::parameterFile(i), false, false, 0, 0, i == current, i == due};
        std::map<int, int> values;
        text.clear();
        if (i == current)
            m_Controller.getParameters(schemeIds(), text);
        if (text.empty())
            m_Controller.readParamByScheme(i, text);
        scheme.isReadable = parseParameterString(text, values) && values.count(scheme::EnableId) != 0;
        if (scheme.isReadable) {
            scheme.isEnabled = values[scheme::EnableId] != 0;
            scheme.from = minutesOf(values, scheme::StartHourId);
            scheme.to = minutesOf(values, scheme::EndHourId);
        }
        schemes.push_back(scheme);
    }
    return schemes;
}

void SchemeDesk::checkIndex(int scheme) const {
    if (scheme >= 0 && scheme < m_nCount)
        return;
    if (m_nCount == 0)
        throw Failure(Refused, "there are no parameter schemes",
                      {"reason: sensorAbility.xml does not say how many", "try: --schemes 3"});
    throw Failure(Usage, "there is no scheme " + std::to_string(scheme),
                  {"there are: 0 to " + std::to_string(m_nCount - 1), "try: --schemes for more"});
}

std::map<int, int> SchemeDesk::saved(int scheme) const {
    std::string text;
    std::map<int, int> values;
    if (!m_Controller.readParamByScheme(scheme, text) || !parseParameterString(text, values) || values.empty())
        throw Failure(Trouble, name(scheme) + ": its file holds no parameters",
                      {"file: " + StateFolder::parameterFile(scheme), "try: scheme copy, from one that is whole"});
    return values;
}

void SchemeDesk::setAutomatic(bool isAutomatic) {
    if (!m_Controller.setParamMode(isAutomatic ? 1 : 0))
        throw Failure(Trouble, "the mode of the schemes could not be saved",
                      {"reason: sensor.xml is missing, broken or read-only", "try: delete it, and start again"});
}

void SchemeDesk::choose(int scheme) {
    checkIndex(scheme);
    saved(scheme);
    OperationReport report;
    const sensorcontrol::ReportScope scope(report);
    if (!m_Controller.setParamScheme(scheme))
        throw Failure(Refused, name(scheme) + ": the module did not take all of its values",
                      reasonsOf(report, m_Parameters));
}

void SchemeDesk::checkSaved() const {
    const int scheme = inForce();
    if (scheme < 0 || scheme >= m_nCount)
        return;
    std::map<int, int> now;
    std::string unsaved;
    for (const auto& [id, value] : saved(scheme)) {
        std::string text;
        now.clear();
        if (m_Controller.getParameters('(' + std::to_string(id) + ')', text) && parseParameterString(text, now) &&
            now[id] != value)
            unsaved += (unsaved.empty() ? "" : ", ") + m_Parameters.nameOf(id) + ' ' + std::to_string(now[id]) +
                       " (saved " + std::to_string(value) + ')';
    }
    if (!unsaved.empty())
        throw Failure(Refused, name(scheme) + " is in force with values that are not saved: " + unsaved,
                      {"try: flush, or scheme choose " + std::to_string(scheme) + " to drop them"});
}

void SchemeDesk::edit(int scheme, const std::string& what, const std::string& text, bool isSpan) {
    const int before = inForce();
    const bool wasAutomatic = isAutomatic();
    if (wasAutomatic)
        setAutomatic(false); // the clock must not come in between
    std::string trouble;
    std::vector<std::string> reasons;
    try {
        // A file that is broken is written anew from what is in force.
        std::string old;
        std::map<int, int> values;
        const bool isWhole =
            m_Controller.readParamByScheme(scheme, old) && parseParameterString(old, values) && !values.empty();
        if (isWhole)
            choose(scheme);
        // Without a span in force the new one meets no cross-check with the old one's halves.
        if (isSpan)
            m_Controller.reInitSchemeTimeMember();
        OperationReport report;
        const sensorcontrol::ReportScope scope(report);
        if (!m_Controller.setParameters(text))
            trouble = "the module did not take all of it";
        else if (!m_Controller.flush())
            trouble = "it could not be saved";
        reasons = reasonsOf(report, m_Parameters);
    } catch (const Failure& failure) {
        trouble = failure.what();
        reasons = failure.details();
    }
    if (before != scheme || !trouble.empty())
        m_Controller.setParamScheme(before);
    if (wasAutomatic)
        setAutomatic(true);
    if (!trouble.empty())
        throw Failure(Refused, what + ": " + trouble, reasons);
}

void SchemeDesk::setSpan(int scheme, const DaySpan& span) {
    checkIndex(scheme);
    if (span.from % 10 != 0 || span.to % 10 != 0)
        throw Failure(Usage, "span " + span.text() + ": a scheme starts and ends on ten minutes");
    edit(scheme, "span of " + name(scheme),
         timeGroups(scheme::StartHourId, span.from) + timeGroups(scheme::EndHourId, span.to), true);
}

void SchemeDesk::setEnabled(int scheme, bool isEnabled) {
    checkIndex(scheme);
    edit(scheme, name(scheme), group(scheme::EnableId, isEnabled ? 1 : 0), false);
}

void SchemeDesk::copy(int from, int to) {
    checkIndex(from);
    checkIndex(to);
    if (from == to)
        throw Failure(Usage, "a scheme is not copied onto itself");
    std::string text;
    for (const auto& [id, value] : saved(from))
        if (!scheme::isSchemeId(id) && id != SensorConfigFile::VersionId && id != SensorConfigFile::Version2Id)
            text += group(id, value);
    edit(to, "copy onto " + name(to), text, false);
}

int SchemeDesk::settle() {
    const int scheme = inForce();
    int due = -1;
    std::string text;
    const bool isCovered = m_Controller.readCurrentParam(due, text) != 0;
    if (scheme < 0 || scheme >= m_nCount || due == scheme)
        return -1;
    if (!isCovered || !isAutomatic()) {
        choose(scheme);
        return scheme;
    }
    for (int i = 0; i < PollCount && inForce() != due; ++i)
        Interrupt::sleep(PollSpan);
    return -1;
}

} // namespace sensorctl
