#include "host/ModuleParameterParser.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view Blanks = " \t\r\n";

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(Blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

} // namespace

int ModuleParameterParser::parse(const std::string& text) {
    m_Values.clear();
    std::map<std::string, std::string> values;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view pair = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(pair.size() + 1, rest.size()));
        if (trim(pair).empty())
            continue;
        const std::size_t equals = pair.find('=');
        const std::string_view key = trim(pair.substr(0, equals));
        if (equals == std::string_view::npos || key.empty())
            return 0;
        values.insert_or_assign(std::string(key), std::string(pair.substr(equals + 1)));
    }
    m_Values = std::move(values);
    return 1;
}

int ModuleParameterParser::getValue(const std::string& key, std::string& value) const {
    const auto found = m_Values.find(key);
    if (found == m_Values.end())
        return 0;
    value = found->second;
    return 1;
}
