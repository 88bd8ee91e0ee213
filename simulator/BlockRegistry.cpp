#include "simulator/BlockRegistry.h"

#include "simulator/Cmd7200Block.h"
#include "simulator/Cmd7300Block.h"
#include "simulator/Cmd8100Block.h"
#include "simulator/Cmd8100OldBlock.h"
#include "simulator/Cmd8300Block.h"
#include "simulator/It1Block.h"
#include "simulator/It1ZoomBlock.h"
#include "simulator/PlainViscaBlock.h"
#include "simulator/SonyCh3310Block.h"
#include "simulator/SonyCv7500Block.h"
#include "simulator/SonyEh4300Block.h"

#include <algorithm>
#include <array>

namespace camerasim {

namespace {

template <class Block>
std::unique_ptr<CameraBlock> make(const BlockSettings& settings) {
    return std::make_unique<Block>(settings);
}

constexpr auto Entries = std::to_array<BlockEntry>({
    {.moduleId = 2,
     .name = "it1",
     .portKey = "RS232",
     .detail = "isInfrared=0;GPIO=0,12,1;TNF=0",
     .make = &make<It1Block>},
    {.moduleId = 9,
     .name = "it1_zoom",
     .portKey = "RS232",
     .detail = "isInfrared=0;GPIO=0,12,1;TNF=0",
     .make = &make<It1ZoomBlock>,
     .companionPortKey = "RS485",
     .makeCompanion = &make<LensMotorBlock>},
    {.moduleId = 11,
     .name = "sony_eh4300",
     .portKey = "RS485",
     .detail = "isInfrared=0",
     .make = &make<SonyEh4300Block>},
    {.moduleId = 16,
     .name = "cmd8100",
     .portKey = "RS485",
     .detail = "isInfrared=0;generation=3",
     .make = &make<Cmd8100Block>},
    {.moduleId = 17, .name = "no_sensor_ui", .portKey = "RS485", .make = &make<PlainViscaBlock>},
    {.moduleId = 18,
     .name = "sony_ch3310",
     .portKey = "RS485",
     .detail = "isInfrared=0",
     .make = &make<SonyCh3310Block>},
    {.moduleId = 19,
     .name = "sony_cv7500",
     .portKey = "RS485",
     .detail = "isInfrared=0",
     .make = &make<SonyCv7500Block>},
    {.moduleId = 21,
     .name = "cmd7300",
     .portKey = "RS485",
     .detail = "isInfrared=0;generation=3",
     .make = &make<Cmd7300Block>},
    {.moduleId = 22, .name = "cmd7200", .portKey = "RS485", .detail = "isInfrared=0", .make = &make<Cmd7200Block>},
    {.moduleId = 24,
     .name = "cmd8100_old",
     .portKey = "RS485",
     .detail = "isInfrared=0",
     .make = &make<Cmd8100OldBlock>},
    {.moduleId = 25,
     .name = "cmd8300",
     .portKey = "RS485",
     .detail = "isInfrared=0;generation=3",
     .make = &make<Cmd8300Block>},
    {.name = "sony_eh6300", .portKey = "RS485", .detail = "isInfrared=0", .make = &make<SonyEh6300Block>},
});

} // namespace

std::span<const BlockEntry> blockEntries() { return Entries; }

const BlockEntry* findBlock(int moduleId) {
    const auto found = std::find_if(Entries.begin(), Entries.end(), [moduleId](const BlockEntry& entry) {
        return entry.moduleId == moduleId && moduleId != BlockEntry::NoModule;
    });
    return found != Entries.end() ? &*found : nullptr;
}

const BlockEntry* findBlock(std::string_view name) {
    const auto found =
        std::find_if(Entries.begin(), Entries.end(), [name](const BlockEntry& entry) { return entry.name == name; });
    return found != Entries.end() ? &*found : nullptr;
}

std::unique_ptr<CameraBlock> makeBlock(int moduleId, const BlockSettings& settings) {
    const BlockEntry* const entry = findBlock(moduleId);
    return entry != nullptr ? entry->make(settings) : nullptr;
}

std::unique_ptr<CameraBlock> makeBlock(std::string_view name, const BlockSettings& settings) {
    const BlockEntry* const entry = findBlock(name);
    return entry != nullptr ? entry->make(settings) : nullptr;
}

std::unique_ptr<CameraBlock> makeCompanion(int moduleId, const BlockSettings& settings) {
    const BlockEntry* const entry = findBlock(moduleId);
    return entry != nullptr && entry->makeCompanion != nullptr ? entry->makeCompanion(settings) : nullptr;
}

} // namespace camerasim
