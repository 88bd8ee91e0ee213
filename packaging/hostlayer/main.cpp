// Brings a camera module up with a host layer of its own: the library, its headers and the files beside this one.
//   hostlayer <folder> [serial device]       (the folder takes the place of the device's "/")
#include "HostLayer.h"
#include "controller/SensorControllerManager.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"

#include <cstdio>
#include <string>

namespace {

/// Sets brightness (id 1), reads it back and keeps it over a restart.
int tryBrightness(ISensorController& controller) {
    std::string values;
    if (!controller.setParameters("(1,60)") || !controller.getParameters("1,500", values) || !controller.flush()) {
        std::fprintf(stderr, "SensorError.log below /mnt/mtd/log says why\n");
        return 1;
    }
    std::fprintf(stderr, "values %s\n", values.c_str());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: hostlayer <folder> [serial device]\n");
        return 1;
    }
    hostlayer::setPathPrefix(argv[1]);

    // Without a serial block the pipeline on the chip, module 4. What the library prints goes to standard output.
    const ModuleConfigure module =
        argc == 3 ? ModuleConfigure(16, std::string("isInfrared=0;generation=3;RS485=") + argv[2], "RS485=9600,8,1,0")
                  : ModuleConfigure(4, "isInfrared=0;autoIris=0;GPIO=0,12,1", "");
    SensorControllerManager manager;
    manager.setUARTController(SafePointer<IUARTController>(new hostlayer::UartPort));
    manager.setGPIO(SafePointer<IGPIO>(new hostlayer::MemoryPins));
    manager.init(1 /* PAL */, VideoResolution(1920, 1080), module);

    const SafePointer<ISensorController> controller = manager.getSensorController();
    const int status = controller->getSensorStatus();
    std::fprintf(stderr, "module %d status %d\n", controller->getSensorType(), status);
    return status == ISensorController::InitSuccess ? tryBrightness(*controller) : 1;
}
