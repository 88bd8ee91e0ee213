#pragma once

#include "simulator/RegisterTextBlock.h"

namespace camerasim {

/// The CMD7200 camera block (module 22). Its day/night report (FFE7) follows the light while register FCC8 leaves the
/// choice to the block, otherwise the choice in FFE6.
class Cmd7200Block : public RegisterTextBlock {
public:
    explicit Cmd7200Block(const BlockSettings& settings = {});

    Picture picture() const override;
    bool decidesDayNight() const override;

protected:
    void registersChanged() override;
    void ambientChanged() override { Cmd7200Block::registersChanged(); }
};

} // namespace camerasim
