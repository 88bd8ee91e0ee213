// The detail and parameter texts of a module: key=value pairs.
#include "FuzzSupport.h"
#include "host/ModuleParameterParser.h"

#include <cstddef>
#include <cstdint>
#include <string>

using fuzzing::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    ModuleParameterParser parser;
    const int result = parser.parse(text);
    require(result == 0 || result == 1);

    for (const char* key : {"isInfrared", "GPIO", "RS485", ""}) {
        std::string value = "untouched";
        if (parser.getValue(key, value) == 0) {
            require(value == "untouched");
        } else {
            require(*key != '\0');
            require(value.find(';') == std::string::npos);
            require(text.find(value) != std::string::npos);
        }
    }
    return 0;
}
