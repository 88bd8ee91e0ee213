#include "SvgDrawing.h"

#include "Failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace sensorctl {

namespace {

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

std::string attribute(const char* name, std::string_view value) {
    return std::string(" ") + name + "=\"" + std::string(value) + '"';
}

std::string attribute(const char* name, double value) { return attribute(name, number(value)); }

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '<')
            result += "&lt;";
        else if (c == '&')
            result += "&amp;";
        else
            result += c;
    }
    return result;
}

} // namespace

SvgDrawing::SvgDrawing(double width, double height) : m_dWidth(width), m_dHeight(height) {
    box(0, 0, width, height, "#ffffff");
}

void SvgDrawing::box(double x, double y, double width, double height, std::string_view colour, std::string_view hint) {
    m_strBody += "<rect" + attribute("x", x) + attribute("y", y) + attribute("width", width) +
                 attribute("height", height) + attribute("fill", colour);
    m_strBody += hint.empty() ? "/>\n" : "><title>" + escaped(hint) + "</title></rect>\n";
}

void SvgDrawing::line(Point from, Point to, std::string_view colour, double width) {
    m_strBody += "<line" + attribute("x1", from.first) + attribute("y1", from.second) + attribute("x2", to.first) +
                 attribute("y2", to.second) + attribute("stroke", colour) + attribute("stroke-width", width) + "/>\n";
}

void SvgDrawing::path(const std::vector<Point>& points, std::string_view colour, double width) {
    std::string list;
    for (const auto& [x, y] : points)
        list += number(x) + ',' + number(y) + ' ';
    m_strBody += "<polyline fill=\"none\" stroke-linejoin=\"round\"" + attribute("stroke", colour) +
                 attribute("stroke-width", width) + attribute("points", list) + "/>\n";
}

void SvgDrawing::text(double x, double y, std::string_view text, Anchor anchor, double size, std::string_view colour) {
    constexpr const char* Names[] = {"start", "middle", "end"};
    m_strBody += "<text" + attribute("x", x) + attribute("y", y) +
                 attribute("text-anchor", Names[static_cast<int>(anchor)]) + attribute("font-size", size) +
                 attribute("fill", colour) + '>' + escaped(text) + "</text>\n";
}

void SvgDrawing::save(const std::string& path) const {
    std::ofstream file(path);
    file << "<svg xmlns=\"http://www.w3.org/2000/svg\"" << attribute("width", m_dWidth)
         << attribute("height", m_dHeight) << attribute("viewBox", "0 0 " + number(m_dWidth) + ' ' + number(m_dHeight))
         << attribute("font-family", "Helvetica, Arial, sans-serif") << ">\n"
         << m_strBody << "</svg>\n";
    file.close();
    if (!file)
        throw Failure(Trouble, path + " cannot be written: " + std::strerror(errno));
}

} // namespace sensorctl
