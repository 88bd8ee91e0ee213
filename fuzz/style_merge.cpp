// A merge of three texts, separated by zero bytes: base style, variations, the module's detail.
#include "FuzzSupport.h"
#include "host/linux/HostSettings.h"
#include "uiconfig/MergedXml.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tinyxml.h>

using fuzzing::isPlainXml;
using fuzzing::require;
using sensorcontrol::MergeReport;

namespace {

std::string_view takePart(std::string_view& rest) {
    const std::string_view part = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    return part;
}

using Key = std::optional<int>;

/// The keys of the tabs, none if there is no root. False if the text cannot be parsed to its end.
bool readKeys(const std::string& text, std::vector<Key>& keys) {
    TiXmlDocument document;
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    const TiXmlElement* const root = document.FirstChildElement();
    const TiXmlElement* tab = root != nullptr ? root->FirstChildElement() : nullptr;
    for (; tab != nullptr; tab = tab->NextSiblingElement()) {
        const TiXmlAttribute* const first = tab->FirstAttribute();
        const long long number = first != nullptr ? std::strtoll(first->Value(), nullptr, 10) : 0;
        keys.push_back(first != nullptr ? Key(static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX)))
                                        : Key());
    }
    return !document.Error();
}

/// Does to a list of keys what the report says of the tabs.
void replay(const MergeReport& report, std::vector<Key>& keys) {
    std::ptrdiff_t last = 0;
    for (const MergeReport::Block& block : report.blocks) {
        require(block.verdict == MergeReport::Verdict::Applies || block.edits.empty());
        for (const MergeReport::Edit& edit : block.edits) {
            require(edit.isDone);
            if (edit.kind == MergeReport::EditKind::Delete) {
                require(edit.tabs == static_cast<int>(edit.key ? std::erase(keys, edit.key) : 0));
                continue;
            }
            // Behind a new tab without a key comes the next of its chain.
            std::ptrdiff_t at = edit.anchor ? std::find(keys.begin(), keys.end(), edit.anchor) - keys.begin() : last;
            require(at < std::ssize(keys));
            if (edit.kind == MergeReport::EditKind::AddAfter)
                ++at;
            keys.insert(keys.begin() + at, edit.key);
            last = at;
        }
    }
}

bool isWhole(const MergeReport::Document& document) { return document.reading == MergeReport::Reading::Whole; }

int merge(std::string_view detail, std::string& text, MergeReport& report) {
    MergedXml merged;
    merged.setStyleOriginalPath("/style.xml");
    merged.setStyleModifyPath("/diversity.xml");
    merged.setReport(&report);
    return merged.getStyleMergedString(std::string(detail), text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder Scratch;
    sensorhost::setRootFolder(Scratch.path());
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const std::string_view style = takePart(rest);
    const std::string_view diversity = takePart(rest);
    Scratch.write("style.xml", style);
    Scratch.write("diversity.xml", diversity);

    std::string text = "untouched";
    MergeReport report;
    if (merge(rest, text, report) == 0) {
        require(text == "untouched");
        return 0;
    }
    require(report.documents.size() == 2);
    if (!isPlainXml(style) || !isPlainXml(diversity) || !isWhole(report.documents[0]) || !isWhole(report.documents[1]))
        return 0;
    std::vector<Key> keys;
    std::vector<Key> printed;
    require(readKeys(std::string(style), keys));
    replay(report, keys);
    require(readKeys(text, printed));
    require(printed == keys);
    return 0;
}
