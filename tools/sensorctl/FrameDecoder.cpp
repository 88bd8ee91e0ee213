#include "FrameDecoder.h"

#include "ViscaDecoder.h"
#include "simulator/BlockRegistry.h"
#include "simulator/ViscaBlock.h"

namespace sensorctl {

std::unique_ptr<FrameDecoder> makeDecoder(int moduleId) {
    std::unique_ptr<camerasim::CameraBlock> block = camerasim::makeBlock(moduleId);
    if (dynamic_cast<camerasim::ViscaBlock*>(block.get()) != nullptr)
        return std::make_unique<ViscaDecoder>(std::move(block));
    return nullptr;
}

} // namespace sensorctl
