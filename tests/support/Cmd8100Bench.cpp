#include "support/Cmd8100Bench.h"

#include "controller/SenseControllerFactory.h"

Cmd8100Bench::Cmd8100Bench()
    : m_pClock(std::make_shared<sensorhost::SimulatedClock>()), m_pPort(new BlockPort),
      m_pGpio(new sensorhost::MemoryGpio) {
    sensorhost::installClock(m_pClock);
    m_Root.writeSchemeCount(1);
}

Cmd8100Bench::~Cmd8100Bench() {
    destroy();
    sensorhost::installClock(nullptr);
}

ISensorController& Cmd8100Bench::create() {
    destroy();
    m_pController = SenseControllerFactory::create(16);
    m_pController->setOperator(m_pPort, m_pGpio);
    return *m_pController;
}

int Cmd8100Bench::bringUp(const std::string& detail, int videoSystem, const std::string& parameters) {
    return create().init(videoSystem, ModuleConfigure(16, detail, parameters), VideoResolution(1920, 1080));
}
