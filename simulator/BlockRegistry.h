#pragma once

#include "simulator/CameraBlock.h"

#include <memory>
#include <span>
#include <string_view>

namespace camerasim {

/// One simulated model.
struct BlockEntry {
    int moduleId;
    std::string_view name;
    /// Line speed that the model comes with.
    int baud;
    std::unique_ptr<CameraBlock> (*make)(const BlockSettings& settings);
};

/// Every simulated model, in module id order. A new model is one row here.
std::span<const BlockEntry> blockEntries();

/// A new block of the module id with its factory state; null if there is no such block.
std::unique_ptr<CameraBlock> makeBlock(int moduleId, const BlockSettings& settings = {});

} // namespace camerasim
