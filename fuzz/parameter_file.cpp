// A parameter file as a power cut, a full disk or a foreign hand may leave it, under every operation of its class.
#include "FuzzSupport.h"
#include "host/SensorParameterParser.h"
#include "host/linux/HostSettings.h"
#include "params/SensorConfigFile.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

using fuzzing::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder Folder;
    sensorhost::setRootFolder(Folder.path());
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Folder.write("sensor1.cfg", bytes);

    SensorConfigFile file("/sensor1.cfg");
    file.setVersion(4);
    std::map<int, int> before;
    const int isReadable = file.readParametersFromFile(before);
    int value = 0;
    require(file.readParameterById(1, value) == (isReadable && before.contains(1) ? 1 : 0));
    require(isReadable || !file.isVersionEqual(4));

    // Aligning keeps the values of ids that stay, and touches nothing that it can not read.
    require(file.modifyIdUnEqualParameters("(1,50)(2,40)") == isReadable);
    std::string text;
    require(file.readParametersFromFile(text) == 1);
    if (isReadable) {
        const std::string first = std::to_string(before.contains(1) ? before[1] : 50);
        const std::string second = std::to_string(before.contains(2) ? before[2] : 40);
        require(text == "(1," + first + ")(2," + second + ")(10000,4)");
    } else {
        require(text == std::string(bytes.c_str()));
    }

    // A save always heals the file.
    require(file.saveParametersToFile("(1,5)") == 1);
    require(file.readParametersFromFile(text) == 1 && text == "(1,5)(10000,4)");
    require(file.isVersionEqual(4) == 1);
    return 0;
}
