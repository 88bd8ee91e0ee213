#include "simulator/BlockRegistry.h"

#include "simulator/Cmd8100Block.h"

#include <array>

namespace camerasim {

namespace {

template <class Block>
std::unique_ptr<CameraBlock> make(const BlockSettings& settings) {
    return std::make_unique<Block>(settings);
}

constexpr auto Entries = std::to_array<BlockEntry>({
    {.moduleId = 16, .name = "cmd8100", .baud = 9600, .make = &make<Cmd8100Block>},
});

} // namespace

std::span<const BlockEntry> blockEntries() { return Entries; }

std::unique_ptr<CameraBlock> makeBlock(int moduleId, const BlockSettings& settings) {
    for (const BlockEntry& entry : Entries) {
        if (entry.moduleId == moduleId) {
            return entry.make(settings);
        }
    }
    return nullptr;
}

} // namespace camerasim
