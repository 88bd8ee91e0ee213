// A program outside this source tree: needs the installed headers, libraries and package files, and nothing else.
#include "controller/SensorControllerManager.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"

#include <cstdio>

int main() {
    SensorControllerManager manager;
    manager.init(1, VideoResolution(), ModuleConfigure(0, "", ""));
    std::printf("sensor type %d\n", manager.getSensorController()->getSensorType());
    return 0;
}
