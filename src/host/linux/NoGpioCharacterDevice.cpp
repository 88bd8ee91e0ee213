// In place of GpioCharacterDevice.cpp where the library is built without libgpiod: a machine that has no chips.
#include "host/linux/GpioCharacterDevice.h"

namespace sensorhost {

struct GpioCharacterDevice::State {};

GpioCharacterDevice::GpioCharacterDevice() = default;
GpioCharacterDevice::~GpioCharacterDevice() = default;
int GpioCharacterDevice::enable() { return 1; }
int GpioCharacterDevice::disable() { return 1; }
int GpioCharacterDevice::setValue(int, int, int) { return 0; }
int GpioCharacterDevice::getValue(int, int, int&) { return 0; }

} // namespace sensorhost
