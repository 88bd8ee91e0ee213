#include "Commands.h"
#include "Failure.h"
#include "ModuleFolder.h"
#include "Output.h"
#include "controller/ModelCatalogue.h"

#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

using sensorcontrol::MergeReport;
using Json = nlohmann::ordered_json;

std::string tabText(const std::optional<int>& key) { return key ? std::to_string(*key) : "without a key"; }

Json numberJson(const std::optional<int>& value) { return value ? Json(*value) : Json(); }

const char* editName(MergeReport::EditKind kind) {
    switch (kind) {
    case MergeReport::EditKind::Delete:
        return "delete";
    case MergeReport::EditKind::AddAfter:
        return "add-after";
    default:
        return "add-before";
    }
}

std::string editText(const MergeReport::Edit& edit) {
    if (edit.kind == MergeReport::EditKind::Delete)
        return "delete tab " + tabText(edit.key) + (edit.tabs == 1 ? "" : ": " + std::to_string(edit.tabs) + " tabs");
    const std::string place = edit.kind == MergeReport::EditKind::AddAfter ? "after" : "before";
    if (!edit.isDone)
        return "add " + place + " tab " + tabText(edit.anchor) + ": failed, there is no such tab";
    return "add tab " + tabText(edit.key) + ' ' + place + " tab " + tabText(edit.anchor);
}

std::string conditionText(const MergeReport::Condition& condition) {
    const std::string wanted = " \"" + condition.accepted + '"';
    if (!condition.found)
        return condition.key + " is missing, wanted" + wanted;
    return condition.key + '=' + *condition.found + (condition.holds ? " is one of" : " is none of") + wanted;
}

/// With --json nothing may stand for the bytes that are there.
void record(Output& output, const std::string& text, const Json& object, const std::string& what) {
    if (output.isJson()) {
        try {
            static_cast<void>(object.dump());
        } catch (const Json::type_error&) {
            throw Failure(Trouble, what + " is no UTF-8, which JSON cannot hold", {"try: without --json"});
        }
    }
    output.record(text, object);
}

const char* verdictText(MergeReport::Verdict verdict) {
    switch (verdict) {
    case MergeReport::Verdict::Applies:
        return " applies";
    case MergeReport::Verdict::DoesNotApply:
        return " does not apply";
    default:
        return " is not decided: the module's detail cannot be parsed";
    }
}

void recordBlock(Output& output, std::size_t number, const MergeReport::Block& block) {
    const bool isDecided = block.verdict != MergeReport::Verdict::Undecided;
    const std::string start = "block " + std::to_string(number) + ' ';
    std::string text = start + block.name + verdictText(block.verdict);
    if (isDecided && block.conditions.empty())
        text += "\n" + start + "has no condition";
    Json object;
    object["block"] = number;
    object["name"] = block.name;
    object["applies"] = isDecided ? Json(block.verdict == MergeReport::Verdict::Applies) : Json();
    object["conditions"] = Json::array();
    for (const MergeReport::Condition& condition : block.conditions) {
        text += '\n' + start + conditionText(condition);
        object["conditions"].push_back({{"key", condition.key},
                                        {"accepted", condition.accepted},
                                        {"found", condition.found ? Json(*condition.found) : Json()},
                                        {"holds", condition.holds}});
    }
    object["edits"] = Json::array();
    for (const MergeReport::Edit& edit : block.edits) {
        text += '\n' + start + editText(edit);
        object["edits"].push_back({{"edit", editName(edit.kind)},
                                   {"key", numberJson(edit.key)},
                                   {"anchor", numberJson(edit.anchor)},
                                   {"tabs", edit.tabs},
                                   {"done", edit.isDone}});
    }
    record(output, text, object, "block " + std::to_string(number) + " of the variations");
}

/// The documents that were not read, or not to their end.
std::vector<std::string> faultsOf(const MergeReport& report) {
    std::vector<std::string> faults;
    for (const MergeReport::Document& document : report.documents) {
        if (document.reading == MergeReport::Reading::NotRead)
            faults.push_back(document.path + ": cannot be read");
        if (document.reading == MergeReport::Reading::Broken)
            faults.push_back(document.path + ": is no sound XML, and counts only as far as it could be parsed");
    }
    return faults;
}

void recordModules(Output& output, const ModuleFolder& folder) {
    for (std::size_t i = 0; i < folder.records().size(); ++i) {
        const ModuleConfigure& module = folder.records()[i];
        const std::optional<sensorcontrol::ModelInfo> model = sensorcontrol::describeModel(module.getModuleId());
        const char* const verdict = i == folder.chosen()                           ? "chosen, the last that fits"
                                    : SensorFile::isModuleId(module.getModuleId()) ? "replaced by a later one"
                                                                                   : "passed over, no id of a module";
        Json object;
        object["record"] = i + 1;
        object["module"] = module.getModuleId();
        object["class"] = model ? Json(model->className) : Json();
        object["chosen"] = i == folder.chosen();
        object["why"] = verdict;
        object["detail"] = module.getDetail();
        object["parameters"] = module.getParameters();
        const std::string title = "record " + std::to_string(i + 1);
        record(output,
               title + " module " + std::to_string(module.getModuleId()) + ' ' + (model ? model->className : "-") +
                   ": " + verdict + "; detail " + module.getDetail() + "; parameters " + module.getParameters(),
               object, title);
    }
}

/// The texts of one name in the language asked for, and in the one that answers for those that are not there.
struct LanguageText {
    int language;
    const std::string& text;
    const std::string& fallback;

    /// Language 1 answers with its own text, not with a copy.
    bool isFallback() const { return language != 1 && &text == &fallback; }
};

void recordText(Output& output, const std::string& name, const std::string& text, bool isAlone,
                const LanguageText* language = nullptr) {
    Json object;
    object["text"] = name;
    object["language"] = language != nullptr ? Json(language->language) : Json();
    std::string title = name;
    if (language != nullptr) {
        const bool isServed = !language->isFallback() || !text.empty();
        object["served"] = isServed ? Json(language->isFallback() ? 1 : language->language) : Json();
        title += ' ' + std::to_string(language->language);
        if (text.empty())
            output.note("warning: text " + title + " is missing or empty");
        else if (language->isFallback())
            output.note("warning: text " + title + " is missing: that of language 1 stands for it");
        if (language->isFallback() && isServed)
            title += " (language 1)";
    }
    object["content"] = text;
    if (isAlone && !output.isJson()) {
        output.bytes(text);
        return;
    }
    std::string shown = "==> " + title + " <==\n" + text;
    // A record ends its last line itself.
    if (shown.ends_with('\n'))
        shown.pop_back();
    record(output, shown, object, "text " + title);
}

} // namespace

int showUi(Output& output, const UiOptions& options) {
    ModuleFolder folder(options.selection);
    const bool isAlone = !options.print.empty();
    if (!isAlone)
        recordModules(output, folder);
    if (options.explain)
        for (std::size_t i = 0; i < folder.report().blocks.size(); ++i)
            recordBlock(output, i + 1, folder.report().blocks[i]);
    if (options.explain && folder.report().blocks.empty())
        output.note("no block of variations was looked at");
    std::vector<std::string> complaints = faultsOf(folder.report());
    complaints.insert(complaints.end(), folder.complaints().begin(), folder.complaints().end());
    if (!folder.hasTexts()) {
        std::vector<std::string> reasons;
        reasons.reserve(complaints.size() + 1);
        for (const std::string& line : complaints)
            reasons.push_back("reason: " + line);
        if (!options.explain && !folder.report().blocks.empty())
            reasons.emplace_back("try: --explain, for what the merge did");
        throw Failure(Trouble,
                      "the web interface of module " + std::to_string(folder.module().getModuleId()) + " in " +
                          options.selection.folder + ": failed",
                      reasons);
    }
    for (const std::string& line : complaints)
        output.note("warning: " + line);

    SensorFile& texts = folder.texts();
    const auto isWanted = [&](const char* name) { return !isAlone || options.print == name; };
    if (isWanted("style"))
        recordText(output, "style", texts.getUIStyleConfig(), isAlone);
    if (isWanted("gui"))
        recordText(output, "gui", texts.getUISensorConfig_V1(), isAlone);
    const int language = options.language;
    const LanguageText common = {language, texts.getUICommonConfig(language), texts.getUICommonConfig(1)};
    if (isWanted("common"))
        recordText(output, "common", common.text, isAlone, &common);
    const LanguageText own = {language, texts.getUILanguageConfig(language), texts.getUILanguageConfig(1)};
    if (isWanted("language"))
        recordText(output, "language", own.text, isAlone, &own);
    return Done;
}

} // namespace sensorctl
