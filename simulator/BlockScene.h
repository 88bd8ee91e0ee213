#pragma once

#include "simulator/BlockSettings.h"

#include <optional>
#include <string>
#include <string_view>

namespace camerasim {

/// The picture of a block: in colour by day, black and white and sensitive to infrared by night.
enum class Picture { Day, Night };

/// What a block sees and shows, whatever it speaks.
class BlockScene {
public:
    BlockScene() = default;
    virtual ~BlockScene() = default;
    BlockScene(const BlockScene&) = delete;
    BlockScene& operator=(const BlockScene&) = delete;

    /// The picture in force, whether the host commanded it or the block chose it.
    virtual Picture picture() const = 0;
    /// Whether the block goes by the light at its own sensor; otherwise the host commands the picture.
    virtual bool decidesDayNight() const = 0;
    /// Whether the block moves its infrared filter with the picture; otherwise that is the host's.
    virtual bool movesFilter() const { return true; }
    /// Percent of power at which its lamps are lit; nothing if it has none.
    virtual std::optional<int> lamps() const { return std::nullopt; }
    /// Video system in force: "PAL", "NTSC", or a text of the model's own; empty if the block has none.
    virtual std::string videoSystem() const { return {}; }
    /// Puts the block into a video system as if a host had brought it up in it before, so that the next host finds
    /// nothing to restart it for. False if it does not know the text.
    virtual bool setVideoSystem(std::string_view) { return false; }

    /// Lets it be light (300 lux) or dark (0.2 lux) at the block's sensor. Its day/night report follows while it
    /// decides for itself, its gain or light index in any case.
    void setAmbient(Ambient ambient);
    /// The same for any light in lux, at least 0. Whether the block's own sensor takes it for light may be told;
    /// otherwise it is dark below 20 lux.
    void setLight(double lux, std::optional<Ambient> ambient = std::nullopt);
    Ambient ambient() const { return m_Ambient; }
    double light() const { return m_dLux; }

protected:
    /// The light has changed; where it got light or dark with it, that is told first.
    virtual void ambientChanged() {}
    virtual void lightChanged() {}

private:
    static constexpr double LitLux = 300;

    Ambient m_Ambient = Ambient::Light;
    double m_dLux = LitLux;
};

} // namespace camerasim
