#include "host/imaging/ImagingStandIn.h"
#include "host/linux/GpioCharacterDevice.h"
#include "host/linux/MemoryGpio.h"

#include <climits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using sensorhost::ImagingStandIn;

TEST(GpioCharacterDevice, MissingChipsAndWrongPinsFail) {
    sensorhost::GpioCharacterDevice gpio;
    EXPECT_NE(gpio.enable(), 0);
    for (const auto& [group, pin] : {std::pair{-1, 0}, {4095, 0}, {4095, 5}, {0, -1}, {0, 1'000'000}}) {
        int value = 42;
        EXPECT_EQ(gpio.setValue(group, pin, 1) + gpio.getValue(group, pin, value), 0) << group << ' ' << pin;
        EXPECT_EQ(value, 42);
    }
    EXPECT_NE(gpio.disable(), 0);
}

TEST(MemoryGpio, KeepsPinsAndTellsTheirHistory) {
    sensorhost::MemoryGpio gpio;
    int value = 9;
    EXPECT_NE(gpio.getValue(0, 1, value), 0);
    EXPECT_EQ(value, 0);
    gpio.setFailing(0, 1, true);
    EXPECT_EQ(gpio.setValue(0, 1, 1) + gpio.getValue(0, 1, value), 0);
    gpio.setFailing(0, 1, false);
    for (int i = 0; i < 10'005; ++i)
        gpio.setValue(1, i, 5);
    const auto history = gpio.getHistory();
    ASSERT_EQ(history.size(), 10'000U);
    EXPECT_EQ(history.front().pin, 5);
    EXPECT_EQ(history.back().pin, 10'004);
    EXPECT_EQ(history.back().value, 1);
    gpio.setUnknownFailing(true);
    EXPECT_NE(gpio.getValue(1, 1, value), 0);
    EXPECT_EQ(gpio.getValue(5, 5, value), 0);
    EXPECT_EQ(value, 1);
}

class Imaging : public testing::Test {
protected:
    Imaging() { m_StandIn.reset(); }
    ~Imaging() override { m_StandIn.reset(); }
    static void start() {
        EXPECT_EQ(DRV_init(), 0);
        EXPECT_EQ(ALG_sysInit(), 0);
        EXPECT_EQ(brewfi_init(), 0);
    }

    ImagingStandIn& m_StandIn = ImagingStandIn::getInstance();
};

TEST_F(Imaging, AnswersWithWhatWasSetAndRecordsCalls) {
    start();
    EXPECT_EQ(BrAewb_UiSetNightColorMode(1, 2), 0);
    EXPECT_EQ(BrAewb_UiGetNightColorMode(), 2);
    EXPECT_EQ(braewb_ioctrlParam(0, 0, nullptr), -1);
    std::vector<std::int32_t> curve(1024);
    curve[1023] = 17;
    CSL_IpipeEdgeEnhanceConfig config{};
    config.words[18] = 5;
    config.curveTable = curve.data();
    EXPECT_EQ(DRV_ipipeSetEdgeEnhance(&config), 0);
    curve.assign(1024, 0);
    EXPECT_EQ(m_StandIn.getEdgeCurve().at(1023), 17);
    EXPECT_EQ(m_StandIn.getEdgeWords().at(18), 5);
    EXPECT_EQ(DRV_ipipeSetEdgeEnhance(nullptr) + BrAewb_UiSetNightColorMode(0, 3), -2);
    EXPECT_EQ(m_StandIn.misuses().size(), 3U);
    EXPECT_EQ(BrAewb_UiGetNightColorMode(), 2);
    EXPECT_FALSE(m_StandIn.setValue("BrAewb_UiGetNothing", 1));
    EXPECT_FALSE(m_StandIn.setValue("DRV_init", 1));

    m_StandIn.setRecording(true);
    BrAewb_UiSetSharpness(40);
    BrAewb_UiGetSharpness();
    BrAewb_UiSetNightColorMode(1, 0);
    int door = 1;
    braewb_ioctrlParam(0, 0, &door);
    DRV_ipipeSetEdgeEnhance(&config);
    m_StandIn.setRecording(false);
    DRV_SetKTNFWorkMode(0);
    std::string text;
    for (const auto& call : m_StandIn.calls()) {
        text += call.function;
        for (const int argument : call.arguments)
            text += ' ' + std::to_string(argument);
        text += '=' + std::to_string(call.result) + ' ';
    }
    EXPECT_EQ(text, "BrAewb_UiSetSharpness 40=0 BrAewb_UiGetSharpness=40 BrAewb_UiSetNightColorMode 1 0=0 "
                    "braewb_ioctrlParam 0 0 1=0 DRV_ipipeSetEdgeEnhance 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 5=0 ");
}

TEST_F(Imaging, GivesWhatItIsToldTo) {
    start();
    EXPECT_TRUE(m_StandIn.setResult("BrAewb_UiGetSharpness", 7));
    EXPECT_TRUE(m_StandIn.setNextResult("BrAewb_UiGetSharpness", -3));
    EXPECT_EQ(BrAewb_UiGetSharpness(), -3);
    EXPECT_EQ(BrAewb_UiGetSharpness(), 7);
    m_StandIn.setResult("BrAewb_UiGetSharpness", std::nullopt);
    m_StandIn.setNextResult("BrAewb_UiSetSharpness", 2);
    EXPECT_EQ(BrAewb_UiSetSharpness(60), 2);
    EXPECT_EQ(BrAewb_UiGetSharpness(), 50);
    EXPECT_EQ(BrAewb_UiSetSharpness(60), 0);
    EXPECT_EQ(BrAewb_UiGetSharpness(), 60);
    EXPECT_FALSE(m_StandIn.setResult("BrAewb_UiGetNothing", 1));
    EXPECT_FALSE(m_StandIn.setNextResult("printf", 1));
}

TEST_F(Imaging, ExposesTheScene) {
    start();
    const auto expose = [this](double lux, int shutter, double gain) {
        m_StandIn.setScene(lux);
        EXPECT_EQ(m_StandIn.getExposure().shutter, shutter) << lux;
        EXPECT_EQ(BrAewb_UiGetGain() / 4096.0, gain) << lux;
        EXPECT_EQ(BrAewb_UiGetIso() / 4096.0, gain) << lux;
    };
    expose(1e5, 100, 1); // too bright
    expose(1000, 1000, 1);
    expose(2.5, 40000, 10);
    expose(0, 40000, 64); // too dark
    BrAewb_UiSetMaxGain4Auto(8 * 4096);
    BrAewb_UiSetMaxShutr4Auto(20000);
    BrAewb_UiSetBrtness(100);
    expose(25, 20000, 4);
    expose(1, 20000, 8);
    BrAewb_UiSetBrtness(50);
    BrAewb_UiSetShutrCtrlMode(1);
    BrAewb_UiSetFixShutr4Manu(5000);
    expose(100, 5000, 2);
    BrAewb_UiSetShutrCtrlMode(0);
    BrAewb_UiSetGainCtrlMode(1);
    BrAewb_UiSetFixGain4Manu(4 * 4096);
    expose(100, 2500, 4);
    for (const int absurd : {-1, INT_MAX}) {
        BrAewb_UiSetFixGain4Manu(absurd);
        BrAewb_UiSetMaxShutr4Auto(absurd);
        expose(1e-3, absurd < 0 ? 100 : 1907, absurd / 4096.0);
    }
}

TEST_F(Imaging, WatchesTheOrderOfTheStart) {
    BrAewb_UiGetGain();
    EXPECT_EQ(m_StandIn.misuses(), std::vector<std::string>{"BrAewb_UiGetGain"});
    m_StandIn.reset();
    m_StandIn.setNextResult("ALG_sysInit", -1);
    EXPECT_EQ(DRV_init(), 0);
    EXPECT_NE(ALG_sysInit(), 0);
    brewfi_init();
    EXPECT_EQ(m_StandIn.misuses(), std::vector<std::string>{"brewfi_init"});
    m_StandIn.reset();
    start();
    EXPECT_TRUE(m_StandIn.isStarted());
    brewfi_exit();
    EXPECT_FALSE(m_StandIn.isStarted());
    EXPECT_TRUE(m_StandIn.misuses().empty());
    DRV_ipipeSetEEEnable(1);
    EXPECT_EQ(m_StandIn.misuses().size(), 1U);
}

} // namespace
