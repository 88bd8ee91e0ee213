#pragma once

#include "controller/ISensorController.h"
#include "host/SafePointer.h"
#include "host/linux/SimulatedClock.h"
#include "simulator/PtyServer.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// A CMD8100 controller, up, on a simulated block behind a real pseudo-terminal without line speed. The library's own
/// waits pass on a simulated clock. The library's console goes to /dev/null.
class Workbench {
public:
    Workbench();
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    /// A further controller, up on a block of its own behind a pseudo-terminal of its own; the path of its port.
    struct Member {
        SafePointer<ISensorController> controller;
        std::string portPath;
    };
    Member& member(int moduleId);

    ISensorController& controller() { return *m_pController; }
    const std::string& portPath() const { return m_strLink; }

    /// A controller of the on-chip pipeline before a dim scene, tuned by status and gain; up from the first call on.
    ISensorController& onChipController();

    /// Destroys the controller and brings another up on the same files and port. What controller() gave is gone.
    void bringUpAgain();

private:
    std::unique_ptr<camerasim::PtyServer> serve(int moduleId, const std::string& link);
    SafePointer<ISensorController> start();

    std::string m_strRoot;
    std::string m_strLink;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock;
    std::unique_ptr<camerasim::PtyServer> m_pServer;
    SafePointer<ISensorController> m_pController;
    SafePointer<ISensorController> m_pOnChipController;
    std::vector<std::unique_ptr<camerasim::PtyServer>> m_Servers;
    std::map<int, Member> m_Members;
};

/// The one of this process.
Workbench& workbench();
