#include "Commands.h"
#include "Failure.h"
#include "Output.h"
#include "SchemeDesk.h"
#include "Session.h"

#include <charconv>
#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

using Json = nlohmann::ordered_json;

int schemeNumber(const std::string& text) {
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw Failure(Usage, "scheme: \"" + text + "\" is no number of a scheme", {"they count from 0"});
    return number;
}

void recordScheme(Output& output, const SchemeDesk::Scheme& scheme) {
    const std::string span = DaySpan{scheme.from, scheme.to}.text();
    Json object;
    object["scheme"] = scheme.index;
    object["enabled"] = scheme.isReadable ? Json(scheme.isEnabled) : Json();
    object["from"] = scheme.isReadable ? Json(TimeOfDay::text(scheme.from)) : Json();
    object["to"] = scheme.isReadable ? Json(TimeOfDay::text(scheme.to)) : Json();
    object["inForce"] = scheme.isInForce;
    object["due"] = scheme.isDue;
    object["file"] = scheme.path;
    std::string text = "scheme " + std::to_string(scheme.index);
    if (!scheme.isReadable)
        text += " broken";
    else
        text += std::string(scheme.isEnabled ? " enabled " : " disabled ") + span;
    if (scheme.isInForce)
        text += " in-force";
    if (scheme.isDue)
        text += " due";
    output.record(text + ' ' + scheme.path, object);
}

void showSchemes(Output& output, const SchemeDesk& desk) {
    const char* const mode = desk.isAutomatic() ? "auto" : "manual";
    Json object;
    object["mode"] = mode;
    output.record(std::string("mode ") + mode, object);
    for (const SchemeDesk::Scheme& scheme : desk.list())
        recordScheme(output, scheme);
}

struct SchemeAction {
    const char* name;
    std::size_t words; ///< behind the name
    const char* usage;
    bool isEdit; ///< puts other values in force for a moment
    void (*run)(SchemeDesk& desk, const std::vector<std::string>& words);
};

constexpr SchemeAction Actions[] = {
    {"auto", 0, "auto", false, [](SchemeDesk& desk, const std::vector<std::string>&) { desk.setAutomatic(true); }},
    {"manual", 0, "manual", false, [](SchemeDesk& desk, const std::vector<std::string>&) { desk.setAutomatic(false); }},
    {"choose", 1, "choose N", false,
     [](SchemeDesk& desk, const std::vector<std::string>& words) { desk.choose(schemeNumber(words[0])); }},
    {"span", 2, "span N 08:00-12:30", true,
     [](SchemeDesk& desk, const std::vector<std::string>& words) {
         desk.setSpan(schemeNumber(words[0]), DaySpan::parse(words[1], "scheme"));
     }},
    {"enable", 1, "enable N", true,
     [](SchemeDesk& desk, const std::vector<std::string>& words) { desk.setEnabled(schemeNumber(words[0]), true); }},
    {"disable", 1, "disable N", true,
     [](SchemeDesk& desk, const std::vector<std::string>& words) { desk.setEnabled(schemeNumber(words[0]), false); }},
    {"copy", 2, "copy FROM TO", true,
     [](SchemeDesk& desk, const std::vector<std::string>& words) {
         desk.copy(schemeNumber(words[0]), schemeNumber(words[1]));
     }},
};

const SchemeAction& findAction(const std::vector<std::string>& words) {
    std::string known;
    for (const SchemeAction& action : Actions) {
        if (words[0] == action.name) {
            if (words.size() != action.words + 1)
                throw Failure(Usage, "scheme " + words[0] + ": too few or too many words",
                              {std::string("try: scheme ") + action.usage});
            return action;
        }
        known += (known.empty() ? "" : ", ") + std::string(action.usage);
    }
    throw Failure(Usage, "scheme: \"" + words[0] + "\" is nothing to do with one", {"there are: " + known});
}

} // namespace

void checkSchemeWords(const std::vector<std::string>& words) {
    if (!words.empty())
        findAction(words);
}

void workOnSchemes(Output& output, Session& session, const std::vector<std::string>& words) {
    SchemeDesk desk = session.schemes();
    if (!words.empty()) {
        const SchemeAction& action = findAction(words);
        if (action.isEdit)
            desk.checkSaved();
        action.run(desk, {words.begin() + 1, words.end()});
    }
    showSchemes(output, desk);
}

int schemes(Output& output, const TargetOptions& target, const std::vector<std::string>& words) {
    target.check(true);
    checkSchemeWords(words);
    Session session(output, target);
    session.bringUp();
    workOnSchemes(output, session, words);
    return Done;
}

} // namespace sensorctl
