// A configuration folder: module list and list of languages, separated by a zero byte, as a host's start reads them.
#include "FuzzSupport.h"
#include "host/ModuleConfigureParser.h"
#include "host/SensorLanguageConfig.h"
#include "host/linux/HostSettings.h"
#include "uiconfig/SensorFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

using fuzzing::require;

namespace {

/// The folder of one installation, in whose language folders a name from the list can only find what is put there.
class Installation {
public:
    Installation() {
        for (const char* const folder : {"common/en", "common/de", "language/en", "style"})
            std::filesystem::create_directories(m_Scratch.path() / "hd1/moduleConfig/sensorConfig" / folder);
        write("sensorConfig/common/en/SensorCommon.xml", "common en");
        write("sensorConfig/common/de/SensorCommon.xml", "common de");
        write("sensorConfig/language/en/pLang.xml", "lang en");
        write("sensorConfig/style/pStyle.xml", "style");
        sensorhost::setRootFolder(m_Scratch.path());
    }

    void write(const std::string& name, std::string_view text) const {
        m_Scratch.write("hd1/moduleConfig/" + name, text);
    }

private:
    fuzzing::ScratchFolder m_Scratch;
};

bool isModule(const ModuleConfigure& module) { return SensorFile::isModuleId(module.getModuleId()); }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Installation Installation;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(input.find('\0'), size);
    Installation.write("moduleConfig.xml", input.substr(0, split));
    Installation.write("sensorConfig/SensorLanguageConfig.xml", input.substr(std::min(split + 1, size)));

    std::vector<ModuleConfigure> modules;
    const int read = ModuleConfigureParser::parse("/hd1/moduleConfig/moduleConfig.xml", "dome", "", modules);
    require(read == 1 || modules.empty());
    std::vector<SensorLanguageConfig> languages;
    const int hasLanguages =
        SensorLanguageConfigParser::parse("/hd1/moduleConfig/sensorConfig/SensorLanguageConfig.xml", languages);

    SensorFile file;
    const int result = file.init("dome", "");
    const auto last = std::find_if(modules.rbegin(), modules.rend(), isModule);
    require(file.getModuleConfigure().getModuleId() == (last != modules.rend() ? last->getModuleId() : 0));
    require(result == 0 || hasLanguages == 1);
    require(result == 1 || file.getUIStyleConfig().empty());
    for (const SensorLanguageConfig& language : languages) {
        const std::string& text = file.getUILanguageConfig(language.getLanguageId());
        require(result == 1 || text.empty());
    }
    return 0;
}
