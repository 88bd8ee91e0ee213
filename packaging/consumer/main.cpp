// Brings a camera module up with the host classes of libsensorhost.
//   consumer <folder> <serial device>       (the folder takes the place of the device's "/")
#include "controller/SensorControllerManager.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SerialPort.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: consumer <folder> <serial device>\n");
        return 1;
    }
    sensorhost::setRootFolder(argv[1]); // left out on the device itself

    SensorControllerManager manager;
    manager.setUARTController(SafePointer<IUARTController>(new sensorhost::SerialPort));
    manager.setGPIO(SafePointer<IGPIO>(new sensorhost::MemoryGpio)); // real pins: GpioCharacterDevice
    manager.init(1 /* PAL */, VideoResolution(1920, 1080),
                 ModuleConfigure(16, std::string("isInfrared=0;generation=3;RS485=") + argv[2], "RS485=9600,8,1,0"));

    const SafePointer<ISensorController> controller = manager.getSensorController();
    if (controller->getSensorStatus() != ISensorController::InitSuccess) {
        std::fprintf(stderr, "no module: /mnt/mtd/log/SensorError.log says why\n");
        return 1;
    }
    // 0 if an id was refused (the others are applied), if one was never set, if there is no scheme to save in.
    std::string values;
    const int isSet = controller->setParameters("(1,60)(4,1)");
    const int isRead = controller->getParameters("(1)(4)", values);
    const int isKept = controller->flush();
    std::fprintf(stderr, "set %d, read %d: %s, kept %d\n", isSet, isRead, values.c_str(), isKept);
    return isSet && isRead && isKept ? 0 : 1;
}
