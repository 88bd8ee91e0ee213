#include "PipelineReadings.h"

#include "host/imaging/ImagingStandIn.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace sensorctl {

std::vector<Reading> readPipeline() {
    const sensorhost::ImagingStandIn& pipeline = sensorhost::ImagingStandIn::getInstance();
    constexpr int HdrLevelBits = 0xf;
    constexpr double Decimals = 100;
    const bool isFiltering = pipeline.getValue("DRV_SetKTNFWorkMode") != 0;
    const auto filterValue = [&](const char* function) { return isFiltering ? pipeline.getValue(function) : -1; };
    const double gain = static_cast<double>(pipeline.getExposure().gain) / sensorhost::UnityGain;
    return {{"gain", std::round(gain * Decimals) / Decimals},
            {"A0", static_cast<double>(filterValue("DRV_SetKTNF_TNF_A0"))},
            {"TM", static_cast<double>(filterValue("DRV_SetKTNF_TNF_TM"))},
            {"DC", static_cast<double>(pipeline.getValue("DRV_isifSetDcSub"))},
            {"HDR", static_cast<double>(pipeline.getValue("BrAewb_UiSetHdrMode") & HdrLevelBits)}};
}

int pictureOfPipeline() {
    return sensorhost::ImagingStandIn::getInstance().getValue("BrAewb_UiSetDayNightStat") == 0 ? 1 : 0;
}

nlohmann::ordered_json readingJson(double value) {
    const double whole = std::round(value);
    return whole == value ? nlohmann::ordered_json(static_cast<long long>(whole)) : nlohmann::ordered_json(value);
}

} // namespace sensorctl
