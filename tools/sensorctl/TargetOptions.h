#pragma once

#include "ModuleFolder.h"
#include "host/VideoResolution.h"

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace sensorctl {

/// What is to be brought up, as the command line has it, and checked.
struct TargetOptions {
    int moduleId = -1;
    ModuleSelection selection; ///< in place of the module id; without a folder: none
    std::string port;
    std::string line;
    bool simulated = false;
    bool simulatedRestart = false;
    int baudPace = 0;
    std::string detail;
    std::string videoSystem = "pal";
    std::string resolution = "1920x1080";
    std::string root;
    int schemes = 0; ///< how many the installation is to have; 0: as it is
    std::string gpio;
    std::string tuning; ///< becomes the tuning file; empty: the one that is there
    std::vector<std::string> faults;
    std::string trace;

    /// Declares the options.
    void declare(CLI::App& command);
    /// Takes the module from the configuration folder, if one is named. Before anything else; throws Failure.
    void loadSelection();
    /// The module is the on-chip pipeline: no port, and the host library's simulated pipeline.
    bool isOnChip() const;
    bool isSimulated() const { return simulated || isOnChip(); }
    bool hasPort() const { return isSimulated() || !port.empty(); }

    /// Throws Failure with Usage for anything that cannot be meant. needsPort: a port or a simulated block is a must.
    void check(bool needsPort) const;

    int videoSystemNumber() const { return videoSystem == "pal" ? 1 : 0; }
    VideoResolution videoResolution() const;
    std::string lineText() const;
    /// The port asked for, else the one that the configuration folder names; may be empty.
    std::string device() const;
    /// The two texts of the module, for the devices that were found; the second counts where a module has two ports.
    std::string detailText(const std::string& device, const std::string& secondDevice = "") const;
    std::string parametersText() const;
    bool usesGpioChip() const { return gpio == "chip" || (gpio.empty() && !isSimulated()); }
    /// Folder under which the library's files live.
    std::string rootFolder() const;

private:
    using Keys = std::map<std::string, std::string>;

    Keys detailKeys() const;
    /// The key of the serial port in either text.
    std::string portKey() const;

    Keys m_RecordDetail; ///< of the module in the configuration folder
    Keys m_RecordParameters;
};

/// Throws Failure with Usage if there is no such module; says which there are.
void checkModule(int moduleId);
/// The same for the simulated blocks.
void checkSimulated(int moduleId);
/// The same for the text of a fault plan.
void checkFaults(const std::string& plan);

} // namespace sensorctl
