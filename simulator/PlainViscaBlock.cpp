#include "simulator/PlainViscaBlock.h"

#include "simulator/ViscaRows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr ViscaModel Plain{.name = "no_sensor_ui", .registers = CommonRows, .version = {0x00, 0x20, 0x00, 0x01}};

} // namespace

PlainViscaBlock::PlainViscaBlock(const BlockSettings& settings) : ViscaBlock(Plain, settings) {}

} // namespace camerasim
