#include "Workbench.h"

#include "controller/SenseControllerFactory.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SerialPort.h"
#include "simulator/BlockRegistry.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

/// The benchmark's figures keep the real standard output; the library's console is turned away.
class Quiet {
public:
    Quiet() : m_nKept(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        if (std::freopen("/dev/null", "w", stdout) == nullptr)
            std::abort();
    }
    ~Quiet() {
        std::fflush(stdout);
        dup2(m_nKept, STDOUT_FILENO);
        close(m_nKept);
    }

private:
    int m_nKept;
};

} // namespace

Workbench::Workbench() : m_pClock(std::make_shared<sensorhost::SimulatedClock>()) {
    std::string folder = std::filesystem::temp_directory_path() / "sensorcontrol-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        std::abort();
    m_strRoot = folder;
    m_strLink = m_strRoot + "/port";
    std::filesystem::create_directories(m_strRoot + "/hd1/moduleConfig");
    std::ofstream(m_strRoot + "/hd1/moduleConfig/sensorAbility.xml")
        << "<ability><paramScheme><item value=\"1\"/></paramScheme></ability>";
    sensorhost::setRootFolder(m_strRoot);
    sensorhost::installClock(m_pClock);

    m_pServer = serve(16, m_strLink);
    Quiet quiet;
    m_pController = start();
}

std::unique_ptr<camerasim::PtyServer> Workbench::serve(int moduleId, const std::string& link) {
    camerasim::BlockSettings settings;
    settings.bootTime = 0;
    auto server = std::make_unique<camerasim::PtyServer>(camerasim::makeBlock(moduleId, settings),
                                                         camerasim::PtyServer::Settings{.baud = 0, .linkPath = link});
    std::string error;
    if (!server->start(error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        std::abort();
    }
    return server;
}

Workbench::Member& Workbench::member(int moduleId) {
    Member& member = m_Members[moduleId];
    if (member.controller.get() != nullptr)
        return member;
    Quiet quiet;
    const std::string name = std::to_string(moduleId);
    member.portPath = m_strRoot + "/port" + name;
    m_Servers.push_back(serve(moduleId, member.portPath));
    member.controller = SenseControllerFactory::create(moduleId);
    member.controller->setOperator(SafePointer<IUARTController>(new sensorhost::SerialPort),
                                   SafePointer<IGPIO>(new sensorhost::MemoryGpio));
    const ModuleConfigure configure(
        moduleId, "RS485=" + member.portPath + ";RS232=" + member.portPath + ";isInfrared=0;GPIO=0,12,1",
        "RS485=9600,8,1,0;RS232=9600,8,1,0");
    if (!member.controller->initController(1, configure))
        std::abort();
    return member;
}

Workbench::~Workbench() {
    m_Members.clear();
    m_pOnChipController = SafePointer<ISensorController>();
    m_pController = SafePointer<ISensorController>();
    sensorhost::installClock(nullptr);
    m_pServer.reset();
    std::filesystem::remove_all(m_strRoot);
}

SafePointer<ISensorController> Workbench::start() {
    SafePointer<ISensorController> controller = SenseControllerFactory::create(16);
    controller->setOperator(SafePointer<IUARTController>(new sensorhost::SerialPort),
                            SafePointer<IGPIO>(new sensorhost::MemoryGpio));
    const ModuleConfigure configure(16, "RS485=" + m_strLink + ";isInfrared=0;generation=3", "RS485=9600,8,1,0");
    if (!controller->init(1, configure, VideoResolution(1920, 1080)))
        std::abort();
    return controller;
}

ISensorController& Workbench::onChipController() {
    if (m_pOnChipController.get() == nullptr) {
        Quiet quiet;
        std::filesystem::create_directories(m_strRoot + "/hd1/program/config");
        std::ofstream(m_strRoot + "/hd1/program/config/ISPParam.xml")
            << "<ispParam><config><DN enable='1'><day min='1' max='2'><item name='DC' value='-32'/></day></DN>"
               "<GAIN enable='1'><low min='0' max='400'><item name='A0' value='8'/><item name='TM' value='4'/></low>"
               "<high min='400' max='9999'><item name='A0' value='24'/><item name='TM' value='12'/></high></GAIN>"
               "</config></ispParam>";
        sensorhost::ImagingStandIn::getInstance().setScene(2);
        m_pOnChipController = SenseControllerFactory::create(4);
        m_pOnChipController->setOperator(SafePointer<IUARTController>(),
                                         SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        const ModuleConfigure configure(4, "isInfrared=0;autoIris=0;GPIO=0,12,1;TNF=1", "");
        if (!m_pOnChipController->init(1, configure, VideoResolution(1920, 1080)))
            std::abort();
        m_pClock->advance(5);
    }
    return *m_pOnChipController;
}

void Workbench::bringUpAgain() {
    Quiet quiet;
    m_pController = SafePointer<ISensorController>(); // the port has one owner
    m_pController = start();
}

Workbench& workbench() {
    static Workbench bench;
    return bench;
}
