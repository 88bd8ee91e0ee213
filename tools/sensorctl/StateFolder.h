#pragma once

#include <string>

namespace sensorctl {

/// The folder under which the library's files live, for as long as this process uses it. Makes what the library expects
/// to find: its folders, and a file that says there is one scheme. Throws Failure with Trouble where that fails.
class StateFolder {
public:
    /// schemes: how many the installation is to have; 0 leaves that as it is.
    StateFolder(const std::string& folder, int schemes);
    ~StateFolder();
    StateFolder(const StateFolder&) = delete;
    StateFolder& operator=(const StateFolder&) = delete;

    /// Makes a file the tuning file of the on-chip pipeline. Throws Failure with Trouble.
    void installTuning(const std::string& file) const;
    /// Where the parameter file of a scheme (from 0) lies, -1 for the factory's.
    static std::string parameterFile(int scheme);
    /// A name in the folder for the port of a simulated block.
    std::string portLink() const;

private:
    void prepare();
    void lock();

    const std::string m_strFolder;
    int m_nLock = -1;
};

} // namespace sensorctl
