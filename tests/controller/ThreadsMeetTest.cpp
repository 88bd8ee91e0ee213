// Several host threads and the background thread on one controller, in real time. What it is for shows under the
// thread sanitizer; without it, it shows that no thread ever finds the parameters half gone.

#include "support/PlainBench.h"

#include <thread>

namespace {

/// Its filter needs no time.
class WithoutPins final : public PlainController {
public:
    ~WithoutPins() override { stopDNChangeThread(); }
    int SwitchInfraredIrCutToDay() override { return 1; }
    int SwitchInfraredIrCutToNight() override { return 1; }
};

} // namespace

TEST(ThreadsMeet, HostThreadsAndTheBackgroundThread) {
    sensorhost::ImagingStandIn::getInstance().reset();
    TempRoot root;
    root.writeSchemeCount(2);
    testing::internal::CaptureStdout();
    int failures[4] = {};
    std::string all;
    std::string saved;
    {
        WithoutPins controller;
        controller.setOperator(SafePointer<IUARTController>(), SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        controller.m_bNotes = false;
        ASSERT_EQ(controller.init(0, ModuleConfigure(99, "", ""), VideoResolution(1920, 1080)), 1);
        const auto expect = [&failures](int thread, bool isTrue) { failures[thread] += isTrue ? 0 : 1; };

        std::thread setter([&] {
            for (int i = 0; i < 150; ++i) {
                const std::string value = std::to_string(i);
                expect(0, controller.setParameters("(1," + value + ")(2," + value + ")(20,1)(30," + value + ")"));
                std::string text;
                expect(0, controller.getAllParameters(text) && text.find("(3,") != std::string::npos);
            }
        });
        std::thread reader([&] {
            for (int i = 0; i < 300; ++i) {
                std::string text;
                int value = 0;
                expect(1, controller.getParameters("(1)(2)(3)(500)(504)", text));
                expect(1, controller.getParameter(2, value));
                controller.setDNSwitchDelay(i % 3);
                controller.m_nStatus = i / 10 % 2;
            }
        });
        std::thread host([&] {
            for (int i = 0; i < 30; ++i) {
                expect(2, controller.flush());
                controller.setDayNightMode(i % 5);
                expect(2, controller.setParamScheme(i % 2));
                expect(2, controller.setParamMode(i % 3));
                if (i % 10 == 9)
                    expect(2, controller.resetParameters());
            }
        });
        std::thread background([&] { // its passes without the second in between
            for (int i = 0; i < 300; ++i) {
                controller.paramSchemeSwitchBody();
                expect(3, controller.DNSwitchHandle());
            }
        });
        for (std::thread* thread : {&setter, &reader, &host, &background})
            thread->join();
        expect(2, controller.flush());
        controller.getParameters("(1)(2)(3)", all);
        saved = root.read("/mnt/mtd/code/config_file/sensor" + std::to_string(controller.m_nParamScheme + 1) + ".cfg");
        int mode = 0;
        expect(2, controller.getParamSchemeModeFromFile(mode) && mode == 29 % 3);
    }
    testing::internal::GetCapturedStdout();
    for (const int count : failures)
        EXPECT_EQ(count, 0);
    EXPECT_TRUE(saved.starts_with(all)) << all << " " << saved;
    sensorhost::ImagingStandIn::getInstance().reset();
}
