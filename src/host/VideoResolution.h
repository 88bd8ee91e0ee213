#pragma once

/// Size of the video picture in pixels.
class VideoResolution {
public:
    constexpr VideoResolution() = default;
    constexpr VideoResolution(int width, int height) : m_nWidth(width), m_nHeight(height) {}

    constexpr int getVideoWidth() const { return m_nWidth; }
    constexpr int getVideoHeight() const { return m_nHeight; }

private:
    int m_nWidth = 1920;
    int m_nHeight = 1080;
};
