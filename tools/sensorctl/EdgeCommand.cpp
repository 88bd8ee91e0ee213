// The edge enhancement of the on-chip pipeline: what a strength of the tuning file comes to.

#include "Commands.h"
#include "Failure.h"
#include "Output.h"
#include "SvgDrawing.h"
#include "host/ImagingLibraries.h"
#include "imaging/EE.h"
#include "imaging/SensorEEDefine.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

constexpr int Strongest = 100;
constexpr std::size_t FirstCoefficient = 4;
constexpr std::size_t CoefficientCount = 9;
/// The words that change with the strength, besides the coefficients.
constexpr std::size_t GradedWords[] = {13, 14, 15, 16, 17};
constexpr const char* Colours[] = {"#4e79a7", "#f28e2b", "#59a14f", "#e15759", "#b07aa1",
                                   "#76b7b2", "#9c755f", "#edc948", "#555555"};

CSL_IpipeEdgeEnhanceConfig recordOf(int strength) {
    CSL_IpipeEdgeEnhanceConfig record{};
    EE().IpParaIntf_GetEdgeEnhanceCfg(0, strength, &record);
    return record;
}

void showRecord(Output& output, int strength) {
    const CSL_IpipeEdgeEnhanceConfig record = recordOf(strength);
    nlohmann::ordered_json object;
    object["strength"] = strength;
    object["words"] = nlohmann::ordered_json::array();
    std::string text = "strength " + std::to_string(strength) + " words";
    for (const std::int32_t word : record.words) {
        object["words"].push_back(word);
        text += ' ' + std::to_string(word);
    }
    output.record(text, object);
}

/// One diagram with its frame, axes and curves.
class Diagram {
public:
    Diagram(SvgDrawing& drawing, double top, const std::string& title, double lastX, double low, double high)
        : m_Drawing(drawing), m_dTop(top), m_dLastX(lastX), m_dLow(low), m_dHigh(high) {
        drawing.box(Left, top, Width, Height, "#f6f6f4");
        drawing.text(Left, top - 8, title, SvgDrawing::Anchor::Start, 14);
        for (int i = 0; i <= 4; ++i) {
            const double x = lastX * i / 4;
            const double y = low + (high - low) * i / 4;
            drawing.line({Left, yOf(y)}, {Left + Width, yOf(y)}, "#dddddd", 0.6);
            drawing.text(Left - 8, yOf(y) + 4, std::to_string(static_cast<int>(y)), SvgDrawing::Anchor::End, 10,
                         "#777");
            drawing.text(xOf(x), top + Height + 14, std::to_string(static_cast<int>(x)), SvgDrawing::Anchor::Middle, 10,
                         "#777");
        }
    }

    /// `value` gives the height at each whole x.
    template <class Function>
    void curve(const std::string& name, const char* colour, Function value) {
        std::vector<SvgDrawing::Point> points;
        for (int x = 0; x <= static_cast<int>(m_dLastX); ++x)
            points.emplace_back(xOf(x), yOf(value(x)));
        m_Drawing.path(points, colour);
        m_Drawing.text(Left + Width + 10, m_dTop + 12 + 15 * m_nCurves++, name, SvgDrawing::Anchor::Start, 11, colour);
    }

    static constexpr double Left = 60;
    static constexpr double Width = 640;
    static constexpr double Height = 220;

private:
    double xOf(double x) const { return Left + Width * x / m_dLastX; }
    double yOf(double y) const { return m_dTop + Height * (1 - (y - m_dLow) / (m_dHigh - m_dLow)); }

    SvgDrawing& m_Drawing;
    const double m_dTop;
    const double m_dLastX;
    const double m_dLow;
    const double m_dHigh;
    int m_nCurves = 0;
};

void drawEdges(const std::string& path) {
    constexpr double Pitch = Diagram::Height + 60;
    constexpr double Top = 50;
    constexpr double WordLimit = 320;
    constexpr double CoefficientLow = -20;
    constexpr double CoefficientHigh = 160;
    constexpr int CurveBits = 9;
    constexpr int CurveLimit = 1 << (CurveBits - 1);

    SvgDrawing drawing(Diagram::Left + Diagram::Width + 120, Top + 3 * Pitch);
    Diagram words(drawing, Top, "Words of the record by strength", Strongest, 0, WordLimit);
    std::size_t colour = 0;
    for (const std::size_t word : GradedWords)
        words.curve("word " + std::to_string(word), Colours[colour++],
                    [word](int strength) { return recordOf(strength).words[word]; });
    Diagram coefficients(drawing, Top + Pitch, "High-pass coefficients by strength", Strongest, CoefficientLow,
                         CoefficientHigh);
    for (std::size_t i = 0; i < CoefficientCount; ++i)
        coefficients.curve("coefficient " + std::to_string(i), Colours[i],
                           [i](int strength) { return recordOf(strength).words[FirstCoefficient + i]; });
    Diagram curve(drawing, Top + 2 * Pitch, "Curve: entry by index, as 9-bit signed numbers",
                  static_cast<double>(SensorEEDefine::SensorEdgeEnhanceTbl.size() - 1), -CurveLimit / 2.0,
                  CurveLimit / 2.0);
    curve.curve("curve", Colours[0], [](int index) {
        const int entry = SensorEEDefine::SensorEdgeEnhanceTbl[static_cast<std::size_t>(index)];
        return entry >= CurveLimit ? entry - 2 * CurveLimit : entry;
    });
    drawing.save(path);
}

} // namespace

int edgeEnhancement(Output& output, const std::vector<int>& strengths, const std::string& plot) {
    constexpr int Step = 10;
    for (const int strength : strengths)
        showRecord(output, strength);
    if (strengths.empty())
        for (int strength = 0; strength <= Strongest; strength += Step)
            showRecord(output, strength);
    if (!plot.empty())
        drawEdges(plot);
    return Done;
}

} // namespace sensorctl
