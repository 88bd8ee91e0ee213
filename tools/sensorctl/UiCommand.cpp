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

void recordBlock(Output& output, std::size_t number, const MergeReport::Block& block) {
    const std::string start = "block " + std::to_string(number) + ' ';
    std::string text = start + block.name + (block.applies ? " applies" : " does not apply");
    if (block.conditions.empty())
        text += "\n" + start + "has no condition";
    Json object;
    object["block"] = number;
    object["name"] = block.name;
    object["applies"] = block.applies;
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
    output.record(text, object);
}

void recordModules(Output& output, const ModuleFolder& folder) {
    for (std::size_t i = 0; i < folder.records().size(); ++i) {
        const ModuleConfigure& record = folder.records()[i];
        const std::optional<sensorcontrol::ModelInfo> model = sensorcontrol::describeModel(record.getModuleId());
        const bool isUsable =
            record.getModuleId() >= SensorFile::FirstModuleId && record.getModuleId() <= SensorFile::LastModuleId;
        const char* const verdict = i == folder.chosen() ? "chosen, the last that fits"
                                    : isUsable           ? "replaced by a later one"
                                                         : "passed over, no id of a module";
        Json object;
        object["record"] = i + 1;
        object["module"] = record.getModuleId();
        object["class"] = model ? Json(model->className) : Json();
        object["chosen"] = i == folder.chosen();
        object["why"] = verdict;
        object["detail"] = record.getDetail();
        object["parameters"] = record.getParameters();
        output.record("record " + std::to_string(i + 1) + " module " + std::to_string(record.getModuleId()) + ' ' +
                          (model ? model->className : "-") + ": " + verdict + "; detail " + record.getDetail() +
                          "; parameters " + record.getParameters(),
                      object);
    }
}

void recordText(Output& output, const std::string& name, const std::optional<int>& language, const std::string& text,
                bool isAlone) {
    Json object;
    object["text"] = name;
    object["language"] = numberJson(language);
    object["content"] = text;
    const std::string title = name + (language ? ' ' + std::to_string(*language) : "");
    std::string shown = isAlone ? text : "==> " + title + " <==\n" + text;
    // A record ends its last line itself.
    if (shown.ends_with('\n'))
        shown.pop_back();
    output.record(shown, object);
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
    if (!folder.hasTexts()) {
        std::vector<std::string> reasons;
        for (const std::string& line : folder.complaints())
            reasons.push_back("reason: " + line);
        if (!options.explain && !folder.report().blocks.empty())
            reasons.emplace_back("try: --explain, for what the merge did");
        throw Failure(Trouble,
                      "the web interface of module " + std::to_string(folder.module().getModuleId()) + " in " +
                          options.selection.folder + ": failed",
                      reasons);
    }
    for (const std::string& line : folder.complaints())
        output.note("warning: " + line);

    SensorFile& texts = folder.texts();
    const auto show = [&](const char* name, const std::optional<int>& language, const std::string& text) {
        if (!isAlone || options.print == name)
            recordText(output, name, language, text, isAlone);
    };
    show("style", std::nullopt, texts.getUIStyleConfig());
    show("gui", std::nullopt, texts.getUISensorConfig_V1());
    show("common", options.language, texts.getUICommonConfig(options.language));
    show("language", options.language, texts.getUILanguageConfig(options.language));
    return Done;
}

} // namespace sensorctl
