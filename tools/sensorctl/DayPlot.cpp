// The picture of a day: a lane for each thing that is in one of a few states, a curve for each number.

#include "DayPlay.h"
#include "SvgDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

namespace sensorctl {

namespace {

constexpr double Left = 110;
constexpr double DayWidth = 960;
constexpr double Right = 40;
constexpr double LaneHeight = 30;
constexpr double CurveHeight = 90;
constexpr double Gap = 12;
constexpr double Top = 56;
constexpr double LineHeight = 16;
constexpr std::size_t MostEvents = 40;
constexpr int DayMinutes = TimeOfDay::MinutesPerDay;

constexpr const char* SchemeColours[] = {"#4e79a7", "#f28e2b", "#59a14f", "#b07aa1",
                                         "#76b7b2", "#edc948", "#9c755f", "#e15759"};

double xOf(int second) { return Left + DayWidth * second / (DayMinutes * 60.0); }

/// How one state looks; no colour: nothing is drawn.
struct Look {
    std::string colour;
    std::string label;
    std::string labelColour = "#ffffff";

    bool operator==(const Look& other) const { return colour == other.colour && label == other.label; }
};

class DayDrawing {
public:
    explicit DayDrawing(const DayRecord& day) : m_Day(day), m_Drawing(Left + DayWidth + Right, height(day)) {}

    void draw(const std::string& title, const std::string& path);

private:
    static double height(const DayRecord& day);
    void lane(const std::string& name, const std::function<Look(const DayRecord::Moment&)>& look);
    void curve(std::size_t reading);
    void hours();
    void events();

    const DayRecord& m_Day;
    SvgDrawing m_Drawing;
    double m_dY = Top;
};

double DayDrawing::height(const DayRecord& day) {
    constexpr double Lanes = 5 * (LaneHeight + Gap);
    const std::size_t readings = day.moments.empty() ? 0 : day.moments.front().sight.readings.size();
    const std::size_t lines = std::min(day.events.size(), MostEvents + 1);
    return Top + Lanes + static_cast<double>(readings) * (CurveHeight + Gap) + 50 +
           static_cast<double>(lines) * LineHeight;
}

void DayDrawing::lane(const std::string& name, const std::function<Look(const DayRecord::Moment&)>& look) {
    const auto& moments = m_Day.moments;
    m_Drawing.text(Left - 10, m_dY + LaneHeight / 2 + 4, name, SvgDrawing::Anchor::End, 13);
    for (std::size_t i = 0; i < moments.size();) {
        const Look shown = look(moments[i]);
        std::size_t next = i + 1;
        while (next < moments.size() && look(moments[next]) == shown)
            ++next;
        const int until = next < moments.size() ? moments[next].second : DayMinutes * 60;
        const double x = xOf(moments[i].second);
        const double width = xOf(until) - x;
        if (!shown.colour.empty()) {
            m_Drawing.box(x, m_dY, width, LaneHeight, shown.colour,
                          name + ' ' + shown.label + ' ' + TimeOfDay::textOfSecond(moments[i].second) + '-' +
                              TimeOfDay::textOfSecond(until));
            constexpr double Letter = 6.5;
            if (width > Letter * static_cast<double>(shown.label.size()) + 6)
                m_Drawing.text(x + width / 2, m_dY + LaneHeight / 2 + 4, shown.label, SvgDrawing::Anchor::Middle, 12,
                               shown.labelColour);
        }
        i = next;
    }
    m_dY += LaneHeight + Gap;
}

void DayDrawing::curve(std::size_t reading) {
    const auto& moments = m_Day.moments;
    double low = moments.front().sight.readings[reading].value;
    double high = low;
    for (const DayRecord::Moment& moment : moments) {
        low = std::min(low, moment.sight.readings[reading].value);
        high = std::max(high, moment.sight.readings[reading].value);
    }
    // What runs over decades, as light and gain do, is shown by decades.
    constexpr double Decades = 30;
    const bool isLogarithmic = low > 0 && high / low > Decades;
    const auto scaled = [isLogarithmic](double value) { return isLogarithmic ? std::log10(value) : value; };
    const double span = std::max(scaled(high) - scaled(low), 1e-9);
    const auto yOf = [&](double value) {
        return m_dY + CurveHeight - (scaled(value) - scaled(low)) / span * CurveHeight;
    };
    m_Drawing.box(Left, m_dY, DayWidth, CurveHeight, "#f6f6f4");
    std::vector<SvgDrawing::Point> points;
    for (const DayRecord::Moment& moment : moments) {
        const double y = yOf(moment.sight.readings[reading].value);
        if (!points.empty() && !isLogarithmic)
            points.emplace_back(xOf(moment.second), points.back().second); // it jumps
        points.emplace_back(xOf(moment.second), y);
    }
    m_Drawing.path(points, "#c0392b");
    char limit[32];
    std::snprintf(limit, sizeof limit, "%g", high);
    m_Drawing.text(Left - 10, m_dY + 10, limit, SvgDrawing::Anchor::End, 10, "#777");
    std::snprintf(limit, sizeof limit, "%g", low);
    m_Drawing.text(Left - 10, m_dY + CurveHeight, limit, SvgDrawing::Anchor::End, 10, "#777");
    m_Drawing.text(Left - 10, m_dY + CurveHeight / 2 + 4, moments.front().sight.readings[reading].name,
                   SvgDrawing::Anchor::End, 13);
    m_dY += CurveHeight + Gap;
}

void DayDrawing::hours() {
    for (int hour = 0; hour <= 24; ++hour) {
        const double x = xOf(hour * 3600);
        m_Drawing.line({x, Top - 6}, {x, m_dY - Gap + 6}, hour % 6 == 0 ? "#999999" : "#dddddd", 0.6);
        if (hour % 2 == 0)
            m_Drawing.text(x, m_dY + 8, TimeOfDay::text(hour * 60), SvgDrawing::Anchor::Middle, 11, "#555");
    }
    m_dY += 30;
}

void DayDrawing::events() {
    std::size_t shown = 0;
    for (const DayEvent& event : m_Day.events) {
        m_dY += LineHeight;
        if (shown++ == MostEvents) {
            m_Drawing.text(Left, m_dY, "... and " + std::to_string(m_Day.events.size() - MostEvents) + " more",
                           SvgDrawing::Anchor::Start, 11, "#777");
            return;
        }
        m_Drawing.text(Left - 10, m_dY, TimeOfDay::textOfSecond(event.second), SvgDrawing::Anchor::End, 11, "#777");
        m_Drawing.text(Left, m_dY, event.what + ' ' + event.value + (event.why.empty() ? "" : ": " + event.why),
                       SvgDrawing::Anchor::Start, 11);
    }
}

void DayDrawing::draw(const std::string& title, const std::string& path) {
    m_Drawing.text(Left, 28, title, SvgDrawing::Anchor::Start, 17);
    lane("sky", [](const DayRecord::Moment& moment) {
        return moment.sight.isLight ? Look{"#ffd95a", "light", "#333"} : Look{"#26335c", "dark"};
    });
    lane("picture", [](const DayRecord::Moment& moment) {
        if (!moment.sight.isDayPicture)
            return Look{};
        return *moment.sight.isDayPicture ? Look{"#8ecae6", "day, colour", "#333"} : Look{"#5c677d", "night"};
    });
    lane("IR-cut filter", [](const DayRecord::Moment& moment) {
        if (!moment.sight.isFilterIn)
            return Look{};
        return *moment.sight.isFilterIn ? Look{"#7fb685", "in", "#333"} : Look{"#a06cd5", "out"};
    });
    lane("IR lights", [](const DayRecord::Moment& moment) {
        if (!moment.sight.lights)
            return Look{"#f3f3f3", "none", "#999"};
        return *moment.sight.lights > 0 ? Look{"#d1495b", std::to_string(*moment.sight.lights) + " %"}
                                        : Look{"#eeeeee", "off", "#777"};
    });
    lane("scheme", [this](const DayRecord::Moment& moment) {
        const auto index = static_cast<std::size_t>(moment.scheme);
        if (index >= m_Day.schemes.size())
            return Look{"#f3f3f3", "none", "#999"};
        const SchemeDesk::Scheme& scheme = m_Day.schemes[index];
        return Look{SchemeColours[index % std::size(SchemeColours)],
                    std::to_string(moment.scheme) + "  " + DaySpan{scheme.from, scheme.to}.text()};
    });
    for (std::size_t i = 0; i < m_Day.moments.front().sight.readings.size(); ++i)
        curve(i);
    hours();
    events();
    m_Drawing.save(path);
}

} // namespace

void drawDay(const DayRecord& day, const std::string& title, const std::string& path) {
    DayDrawing(day).draw(title, path);
}

} // namespace sensorctl
