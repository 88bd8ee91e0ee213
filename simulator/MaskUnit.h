#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace camerasim {

/// One privacy mask; the size is in the unit's steps.
struct MaskRegion {
    bool set = false;
    bool shown = false;
    int width = 0;
    int height = 0;
};

/// The mask unit that shares a block's serial line: frames A1 op region FF, each answered by its exact echo.
class MaskUnit {
public:
    static constexpr std::size_t FrameLength = 4;
    static constexpr int DefaultSize = 8;
    static constexpr int LargestSize = 32;

    /// Carries a frame out; false if the operation is unknown, then nothing is answered.
    bool execute(std::span<const std::uint8_t> frame);
    /// Meaning of a frame, for example "mask: set region 3".
    static std::string describe(std::span<const std::uint8_t> frame);

    /// Region 0 to 255.
    const MaskRegion& region(int region) const { return m_Regions[static_cast<std::uint8_t>(region)]; }
    /// The region that size operations act on; 0 before the first choice.
    int currentRegion() const { return m_nCurrent; }
    void setCurrentRegion(int region) { m_nCurrent = static_cast<std::uint8_t>(region); }

    /// A region as one number: bit 0 set, bit 1 shown, bits 8 to 15 width, 16 to 23 height.
    std::uint32_t packed(int region) const;
    void setPacked(int region, std::uint32_t value);
    void clear() { *this = MaskUnit(); }

private:
    std::array<MaskRegion, 256> m_Regions{};
    std::uint8_t m_nCurrent = 0;
};

} // namespace camerasim
