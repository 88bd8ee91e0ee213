#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sensorctl {

/// A drawing that any browser shows. Lengths are in pixels, y grows downwards.
class SvgDrawing {
public:
    using Point = std::pair<double, double>;

    SvgDrawing(double width, double height);

    /// `hint` is shown when the pointer rests on it; empty for none.
    void box(double x, double y, double width, double height, std::string_view colour, std::string_view hint = {});
    void line(Point from, Point to, std::string_view colour, double width = 1);
    void path(const std::vector<Point>& points, std::string_view colour, double width = 1.5);
    enum class Anchor { Start, Middle, End };
    void text(double x, double y, std::string_view text, Anchor anchor = Anchor::Start, double size = 12,
              std::string_view colour = "#222");

    /// Throws Failure with Trouble if the file cannot be written.
    void save(const std::string& path) const;

private:
    const double m_dWidth;
    const double m_dHeight;
    std::string m_strBody;
};

} // namespace sensorctl
