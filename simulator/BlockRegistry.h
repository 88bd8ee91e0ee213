#pragma once

#include "simulator/CameraBlock.h"

#include <memory>
#include <span>
#include <string_view>

namespace camerasim {

/// One simulated model, with what a host must be told to bring it up.
struct BlockEntry {
    using Make = std::unique_ptr<CameraBlock> (*)(const BlockSettings& settings);

    /// Of a model that no module of the library stands for; it is found by its name only.
    static constexpr int NoModule = -1;

    int moduleId = NoModule;
    std::string_view name = {};
    /// Line speed that the model comes with, on each of its ports.
    int baud = 9600;
    /// Key of the serial port in the module's texts.
    std::string_view portKey = {};
    /// Other keys that the module's detail text needs, with values for a plain installation: "isInfrared=0".
    std::string_view detail = {};
    Make make = nullptr;
    /// Key of a second serial port, and what stands at its end; empty and null without one.
    std::string_view companionPortKey = {};
    Make makeCompanion = nullptr;
};

/// Every simulated model: first those with a module id, in its order. A new model is one row here.
std::span<const BlockEntry> blockEntries();

/// The model of a module id, or of a name; null if there is none.
const BlockEntry* findBlock(int moduleId);
const BlockEntry* findBlock(std::string_view name);

/// A new block with its factory state; null if there is no such block.
std::unique_ptr<CameraBlock> makeBlock(int moduleId, const BlockSettings& settings = {});
std::unique_ptr<CameraBlock> makeBlock(std::string_view name, const BlockSettings& settings = {});
/// What stands at the second port of a module; null if it has only one.
std::unique_ptr<CameraBlock> makeCompanion(int moduleId, const BlockSettings& settings = {});

} // namespace camerasim
