// The text form of parameter sets, as a host or a file hands it over.
#include "FuzzSupport.h"
#include "host/SensorParameterParser.h"
#include "params/ParameterMap.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>

using fuzzing::require;

namespace {

void parseValues(const std::string& text) {
    const std::map<int, int> before{{1, 50}, {1000, -1}};
    std::map<int, int> values = before;
    sensorcontrol::ParameterMap cached;
    for (const auto& [id, value] : before)
        cached.set(id, value);

    const int result = SensorParameterParser::parseSensorParameter(text, values);
    require(cached.add(text) == (result != 0));
    require(result != 0 || values == before);

    const std::string written = SensorParameterParser::createSensorParameterString(values);
    std::string printed;
    cached.print(printed);
    require(printed == written);
    std::map<int, int> again;
    require(SensorParameterParser::parseSensorParameter(written, again) == 1);
    require(again == values);
}

void parseIds(const std::string& text) {
    const std::set<int> before{7};
    std::set<int> ids = before;
    if (SensorParameterParser::parseParameterIdList(text, ids) == 0) {
        require(ids == before);
        return;
    }
    std::string written;
    for (const int id : ids)
        written += "(" + std::to_string(id) + ")";
    std::set<int> again;
    require(SensorParameterParser::parseParameterIdList(written, again) == 1 && again == ids);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    parseValues(text);
    parseIds(text);
    return 0;
}
