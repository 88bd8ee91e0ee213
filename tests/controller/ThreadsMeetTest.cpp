// Several host threads and the background thread on one controller, in real time. What it is for shows under the
// thread sanitizer; without it, it shows that no thread ever finds the parameters half gone.

#include "controller/OperationReport.h"
#include "controller/SenseControllerFactory.h"
#include "support/PlainBench.h"

#include <functional>
#include <random>
#include <thread>

namespace {

/// Its filter needs no time.
class WithoutPins final : public PlainController {
public:
    ~WithoutPins() override { stopDNChangeThread(); }
    int SwitchInfraredIrCutToDay() override { return 1; }
    int SwitchInfraredIrCutToNight() override { return 1; }
};

using Operation = std::function<void(ISensorController&, int)>;

/// Every public operation but those of the start and the end, with an argument that now and then makes sense. Those
/// that sleep come last.
const std::vector<Operation>& operations() {
    using C = ISensorController;
    static const auto Text = [](int i) {
        return "(1," + std::to_string(i) + ")(2,1)(12," + std::to_string(i % 5) + ")";
    };
    static const auto Give = [](int (C::*get)(int&)) {
        return [get](C& c, int) {
            int value = 0;
            (c.*get)(value);
        };
    };
    static const auto GiveText = [](int (C::*get)(std::string&)) {
        return [get](C& c, int) {
            std::string value;
            (c.*get)(value);
        };
    };
    static const auto Take = [](int (C::*set)(int)) { return [set](C& c, int i) { (c.*set)(i); }; };
    static const auto Run = [](int (C::*work)()) { return [work](C& c, int) { (c.*work)(); }; };
    static const std::vector<Operation> All = {
        // The virtual ones.
        [](C& c, int i) { c.updateSensorVideoSystem(i % 2, VideoResolution(1920, 1080)); }, Run(&C::resetParameters),
        Run(&C::resetToLastParameters), Run(&C::flush), Give(&C::getMirrorValue), Take(&C::set2AParam),
        GiveText(&C::getCameraVerInf), Run(&C::restoreAeMode), Run(&C::setRunAutoIris), Run(&C::IrisUp),
        Run(&C::IrisDown), Take(&C::FocusFar), Take(&C::FocusNear), Take(&C::ZoomIn), Take(&C::ZoomOut),
        [](C& c, int i) { c.getZoomValue(i, i); }, Take(&C::setZoomValue), Take(&C::setFocusValue),
        Give(&C::getFocusValue), Take(&C::setFocusMode), Give(&C::getFocusMode), Run(&C::StopZoomContrl),
        Run(&C::StopFocusContrl), Run(&C::StopIris), [](C& c, int i) { c.setZoomAndFocusValue(i, i); },
        Give(&C::getDayNightState), Give(&C::getCameraFocusMode), Take(&C::setNearLight), Give(&C::getNearLight),
        Take(&C::setMiddleLight), Give(&C::getMiddleLight), Take(&C::setFarLight), Give(&C::getFarLight),
        Give(&C::getStillImageValue), Run(&C::enterAutoMode), Take(&C::setPowerMode), Give(&C::getPowerMode),
        [](C& c, int i) { c.getParameterFromSensor(500 + i % 5, i); },
        [](C& c, int i) { c.setParameterToSensor(500 + i % 5, i % 5); }, Run(&C::NotifySensorInitComplate),
        GiveText(&C::UpdateParameters), Take(&C::setDayNightMode), Give(&C::getDayNightMode),
        Give(&C::getDNStatusFromSensor), Give(&C::getDNStatusFromLDR), Run(&C::turnPictureToDay),
        Run(&C::turnPictureToNight), Run(&C::turnToAutoDayNightMode), Run(&C::turnToManualDayNightMode),
        Run(&C::initFactorySetting), Give(&C::getCurrentGain), [](C& c, int) { c.doDependOnThread(); },
        Take(&C::updateHDRMode),
        // Parameters.
        [](C& c, int i) { c.setParameters(Text(i)); }, [](C& c, int i) { c.setParameter(3, i); },
        [](C& c, int) {
            std::string values;
            c.getParameters("(1)(2)(500)", values);
            c.UpdateParametersIdValue(values, 1, 2);
        },
        [](C& c, int i) { c.getParameter(1, i); }, GiveText(&C::getAllParameters),
        GiveText(&C::getAllParametersFromSensor),
        [](C& c, int i) {
            sensorcontrol::OperationReport report;
            const sensorcontrol::ReportScope scope(report);
            c.setParameters(Text(i));
        },
        // Schemes.
        Take(&C::setParamMode), Give(&C::getParamMode), [](C& c, int i) { c.setParamScheme(i % 3); },
        Give(&C::getParamScheme), [](C& c, int i) { c.setParamSchemeEnableFlag(i % 2, i); },
        [](C& c, int i) { c.setParamSchemeStartTime(i % 2, i); }, [](C& c, int i) { c.setParamSchemeEndTime(1, i); },
        Take(&C::setEnableParam), Give(&C::getEnableParam), Take(&C::setParamStartTime_H),
        Take(&C::setParamStartTime_M), Take(&C::setParamEndTime_H), Take(&C::setParamEndTime_M),
        Give(&C::getParamStartTime_H), Give(&C::getParamStartTime_M), Give(&C::getParamEndTime_H),
        Give(&C::getParamEndTime_M), [](C& c, int i) { c.switchParam(i % 3); },
        [](C& c, int i) {
            std::string values;
            c.readCurrentParam(i, values);
            c.readParamByScheme(i, values);
        },
        [](C& c, int) { c.reInitSchemeTimeMember(); }, Run(&C::paramSchemeSwitchBody), Run(&C::initParamSchemeList),
        Give(&C::getParamSchemeNum), Run(&C::createSensorXML), Take(&C::setParamSchemeToFile),
        Take(&C::setParamSchemeModeToFile), Give(&C::getParamSchemeFromFile), Give(&C::getParamSchemeModeFromFile),
        [](C& c, int i) { c.setValueToParamSchemeNode("SchemeIndex", std::to_string(i % 2)); },
        [](C& c, int) {
            std::string value;
            c.getValueFromParamSchemeNode("SchemeMode", value);
        },
        // Day and night.
        Take(&C::setDNSwitchDelay), Give(&C::getDNSwitchDelay), Take(&C::setDTNTime_H), Take(&C::setDTNTime_M),
        Take(&C::setNTDTime_H), Take(&C::setNTDTime_M), Give(&C::getDTNTime_H), Give(&C::getDTNTime_M),
        Give(&C::getNTDTime_H), Give(&C::getNTDTime_M), Run(&C::DNSwitchHandle), Give(&C::DNSwitchJudge),
        Give(&C::getCurrentDNStatus), Take(&C::isTimeToSwitch), Give(&C::DNSwitchByTime), Run(&C::reInitDelayStartTime),
        [](C& c, int) {
            double seconds = 0;
            c.getCurrentTime(seconds);
        },
        Run(&C::enterDayMode), Run(&C::enterNightMode),
        // For drivers.
        Run(&C::initConfigFile), Run(&C::checkSensorConfigVersion), [](C& c, int i) { c.setSensorConfigVersion(i); },
        [](C& c, int i) { c.setSensorConfigVersion2(i); }, Run(&C::stopPTZ),
        [](C& c, int) {
            char frame[8] = {};
            c.computeSum(frame, sizeof frame);
            c.checkUARTRecv(frame, 2, frame, 8);
            c.recodeArray(frame, sizeof frame);
        },
        [](C& c, int i) {
            c.InitPrintf("%d", i);
            c.ErrorPrintf("%d", i);
            c.Debug_Printf("%d", i);
        },
        Run(&C::cancelStart),
        // Tuning.
        Run(&C::ISPParamThreadInit), [](C& c, int i) { c.setISPParam(i % 2 ? "DN" : "GAIN", i % 2); }, Take(&C::setTNF),
        [](C& c, int i) { c.setTNFMode(i % 3); }, Give(&C::getTNF), Give(&C::getTNFMode), Run(&C::ISPParamBody),
        Run(&C::DNChangeThreadBody)};
    return All;
}

} // namespace

TEST(ThreadsMeet, EveryOperationOnSixThreads) {
    constexpr int Threads = 6;
    constexpr int Calls = 120;
    for (const int module : {99, 4, 16}) {
        SCOPED_TRACE(module);
        sensorhost::ImagingStandIn::getInstance().reset();
        TempRoot root;
        root.writeSchemeCount(2);
        root.write("/hd1/program/config/ISPParam.xml",
                   "<a><config realTimeUpdate='1'><DN enable='1'><d min='0' max='2'><item name='DC' value='3'/>"
                   "<item name='A0' value='8'/><item name='EE' value='20'/></d></DN></config></a>");
        testing::internal::CaptureStdout();
        {
            SafePointer<ISensorController> controller =
                module == 99 ? SafePointer<ISensorController>(new WithoutPins) : SenseControllerFactory::create(module);
            if (module == 99)
                static_cast<WithoutPins&>(*controller).m_bNotes = false;
            controller->setOperator(SafePointer<IUARTController>(new BlockPort),
                                    SafePointer<IGPIO>(new sensorhost::MemoryGpio));
            controller->init(0,
                             ModuleConfigure(module, "RS485=x;isInfrared=0;generation=3;GPIO=0,1,1;TNF=1;autoIris=0",
                                             "RS485=9600,8,1,0"),
                             VideoResolution(1920, 1080));
            std::vector<std::thread> threads;
            for (unsigned seed = 0; seed < Threads; ++seed)
                threads.emplace_back([&, seed] {
                    std::mt19937 random(seed);
                    const std::size_t quick = operations().size() - 2;
                    for (int i = 0; i < Calls; ++i)
                        operations()[random() % quick](*controller, static_cast<int>(random() % 30));
                    operations()[quick + seed % 2](*controller, 0);
                });
            for (std::thread& thread : threads)
                thread.join();
        }
        testing::internal::GetCapturedStdout();
    }
    sensorhost::ImagingStandIn::getInstance().reset();
}

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
