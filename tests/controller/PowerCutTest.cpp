// A device loses its power at any moment. What was in the files stays usable: the next start finds a whole parameter
// set, and never one that is half old and half new.

#include "controller/ModelCatalogue.h"
#include "controller/SenseControllerFactory.h"
#include "support/Cmd8100Bench.h"

#include <csignal>
#include <cstdio>
#include <random>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

class PowerCut : public ::testing::Test {
protected:
    /// A controller of its own in this process, on the files of m_Root.
    struct Device {
        Device() { sensorhost::installClock(clock); }
        ~Device() {
            controller = SafePointer<ISensorController>();
            sensorhost::installClock(nullptr);
        }
        int bringUp();

        std::shared_ptr<sensorhost::SimulatedClock> clock = std::make_shared<sensorhost::SimulatedClock>();
        SafePointer<ISensorController> controller;
    };

    /// The life of the process that is to be killed: saves sets of three equal values, with resets in between.
    [[noreturn]] static void live(int ready) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        Device device;
        if (!device.bringUp() || ::write(ready, "", 1) != 1)
            ::_exit(1);
        for (int i = 1; i < 100000; ++i) {
            const std::string value = std::to_string(i % 101);
            device.controller->setParameters("(1," + value + ")(2," + value + ")(3," + value + ")");
            device.controller->flush();
            if (i % 7 == 0)
                device.controller->resetParameters();
            if (i % 5 == 0)
                device.controller->setParamScheme(i / 5 % 2);
        }
        ::_exit(2);
    }

    TempRoot m_Root;
};

int PowerCut::Device::bringUp() {
    controller = SenseControllerFactory::create(16);
    controller->setOperator(SafePointer<IUARTController>(new BlockPort),
                            SafePointer<IGPIO>(new sensorhost::MemoryGpio));
    return controller->init(0, ModuleConfigure(16, "RS485=ttyS1;isInfrared=0;generation=3", "RS485=9600,8,1,0"),
                            VideoResolution(1920, 1080));
}

TEST_F(PowerCut, TheNextStartFindsAWholeSet) {
    std::string commonIds;
    const auto model = sensorcontrol::describeModel(16);
    ASSERT_TRUE(model);
    for (const sensorcontrol::ParameterInfo& parameter : model->parameters)
        if (parameter.kind == IdManager::Common)
            commonIds += "(" + std::to_string(parameter.id) + ")";
    commonIds += "(500)(501)(502)(503)(504)";

    m_Root.writeSchemeCount(2);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1); // the shell lines of a killed process end here, and are waited for
    std::mt19937 random(20240101);
    int bornDead = 0;
    int sets = 0;
    for (int round = 0; round < 30; ++round) {
        if (round % 10 == 0)
            m_Root.remove("/mnt/mtd/code/config_file");
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t process = ::fork();
        ASSERT_NE(process, -1);
        if (process == 0)
            live(ready[1]);
        ::close(ready[1]);
        pollfd isUp{ready[0], POLLIN, 0};
        if (round % 2 != 0) {
            ASSERT_EQ(::poll(&isUp, 1, 60000), 1);
        }
        ::usleep(static_cast<useconds_t>(random() % 15000));
        ::kill(process, SIGKILL);
        int status = 0;
        for (pid_t ended = 0; (ended = ::wait(&status)) > 0;)
            bornDead += ended == process && WIFEXITED(status) && WEXITSTATUS(status) == 1 ? 1 : 0;
        ::close(ready[0]);

        testing::internal::CaptureStdout();
        Device device;
        const int result = device.bringUp();
        const std::string console = testing::internal::GetCapturedStdout();
        ASSERT_EQ(result, 1) << console;
        ASSERT_EQ(device.controller->getSensorStatus(), 2);
        std::string text;
        ASSERT_EQ(device.controller->getParameters(commonIds, text), 1) << console;
        ASSERT_EQ(device.controller->getParameters("(1)(2)(3)", text), 1);
        int values[3] = {};
        ASSERT_EQ(std::sscanf(text.c_str(), "(1,%d)(2,%d)(3,%d)", &values[0], &values[1], &values[2]), 3) << text;
        const bool isFactory = text == "(1,50)(2,40)(3,90)";
        EXPECT_TRUE(isFactory || (values[0] == values[1] && values[1] == values[2])) << text;
        sets += isFactory ? 0 : 1;
        EXPECT_EQ(device.controller->flush(), 1);
    }
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
    EXPECT_EQ(bornDead, 0);
    EXPECT_GT(sets, 5);
}
