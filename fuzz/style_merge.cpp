// A merge of three texts, separated by zero bytes: base style, variations, the module's detail.
#include "FuzzSupport.h"
#include "host/linux/HostSettings.h"
#include "uiconfig/MergedXml.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using fuzzing::require;
using sensorcontrol::MergeReport;

namespace {

std::string_view takePart(std::string_view& rest) {
    const std::string_view part = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    return part;
}

long countTabs(const std::string& text) {
    TiXmlDocument document;
    document.Parse(text.c_str());
    long count = 0;
    if (const TiXmlElement* const root = document.FirstChildElement())
        for (const TiXmlElement* tab = root->FirstChildElement(); tab != nullptr; tab = tab->NextSiblingElement())
            ++count;
    return document.Error() ? -1 : count;
}

/// What the report says of the number of tabs.
long countChange(const MergeReport& report) {
    long change = 0;
    for (const MergeReport::Block& block : report.blocks) {
        require(block.applies || block.edits.empty());
        for (const MergeReport::Condition& condition : block.conditions)
            require(condition.holds || !block.applies);
        for (const MergeReport::Edit& edit : block.edits)
            change += edit.kind == MergeReport::EditKind::Delete ? -edit.tabs : edit.tabs;
    }
    return change;
}

int merge(std::string_view detail, std::string& text, MergeReport& report) {
    MergedXml merged;
    merged.setStyleOriginalPath("/style.xml");
    merged.setStyleModifyPath("/diversity.xml");
    merged.setReport(&report);
    return merged.getStyleMergedString(std::string(detail), text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder scratch;
    sensorhost::setRootFolder(scratch.path());
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    scratch.write("style.xml", takePart(rest));
    scratch.write("diversity.xml", takePart(rest));

    std::string text = "untouched";
    MergeReport report;
    if (merge(rest, text, report) == 0) {
        require(text == "untouched");
        return 0;
    }
    scratch.write("diversity.xml", "");
    std::string base;
    MergeReport none;
    require(merge("", base, none) == 1);
    // A printed text cannot always be parsed again: the parser takes more than it gives.
    const long before = countTabs(base);
    const long after = countTabs(text);
    const bool isPlain = base.find_first_of("\x01\x02&\"'[]!?") == std::string::npos &&
                         text.find_first_of("\x01\x02&\"'[]!?") == std::string::npos;
    require(!isPlain || before < 0 || after < 0 || after == before + countChange(report));
    return 0;
}
