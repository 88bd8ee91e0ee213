// The text form of parameter sets, as a host or a file hands it over.
#include "FuzzSupport.h"
#include "host/ParameterMap.h"
#include "host/SensorParameterParser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

using fuzzing::require;

namespace {

void parseValues(const std::string& text) {
    const std::map<int, int> before{{1, 50}, {1000, -1}};
    std::map<int, int> values = before;
    sensorhost::ParameterMap reused;
    for (const auto& [id, value] : before)
        reused.set(id, value);

    const int result = SensorParameterParser::parseSensorParameter(text, values);
    require(SensorParameterParser::parseSensorParameter(text, reused) == result);
    require(result != 0 || values == before);
    require(std::equal(values.begin(), values.end(), reused.begin(), reused.end(),
                       [](const std::pair<const int, int>& one, const sensorhost::ParameterValue& other) {
                           return one.first == other.id && one.second == other.value;
                       }));

    const std::string written = SensorParameterParser::createSensorParameterString(values);
    std::map<int, int> again;
    require(SensorParameterParser::parseSensorParameter(written, again) == 1);
    require(again == values);
}

void parseIds(const std::string& text) {
    const std::set<int> before{7};
    std::set<int> ids = before;
    std::vector<int> reused{7};
    const int result = SensorParameterParser::parseParameterIdList(text, ids);
    require(SensorParameterParser::parseParameterIdList(text, reused) == result);
    if (result == 0) {
        require(ids == before);
        require(reused.empty());
    } else {
        require(std::equal(ids.begin(), ids.end(), reused.begin(), reused.end()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    parseValues(text);
    parseIds(text);
    return 0;
}
