#include "simulator/BlockRegistry.h"

#include "simulator/Cmd8100Block.h"

#include <array>

namespace camerasim {

namespace {

template <class Block>
std::unique_ptr<CameraBlock> make(const BlockSettings& p_Settings) {
    return std::make_unique<Block>(p_Settings);
}

constexpr auto entries = std::to_array<BlockEntry>({
    {.moduleId = 16, .name = "cmd8100", .baud = 9600, .make = &make<Cmd8100Block>},
});

} // namespace

std::span<const BlockEntry> blockEntries() { return entries; }

std::unique_ptr<CameraBlock> makeBlock(int p_nModuleId, const BlockSettings& p_Settings) {
    for (const BlockEntry& entry : entries) {
        if (entry.moduleId == p_nModuleId) {
            return entry.make(p_Settings);
        }
    }
    return nullptr;
}

} // namespace camerasim
