// A device loses its power at any moment. What was in the files stays usable: the next start finds a whole parameter
// set, and never one that is half old and half new.

#include "controller/SenseControllerFactory.h"
#include "support/Cmd8100Bench.h"

#include <csignal>
#include <filesystem>

#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// How many changes of files are left until the process is killed; negative: for ever. Only ever set in a child.
int g_nChangesLeft = -1;

void countChange() {
    if (g_nChangesLeft >= 0 && g_nChangesLeft-- == 0)
        ::kill(::getpid(), SIGKILL);
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

// The library's files change by these. They stand before the C library's own.
extern "C" {
#pragma GCC visibility push(default)
ssize_t pwrite64(int file, const void* bytes, size_t length, off64_t offset) {
    countChange();
    return next<decltype(pwrite64)>("pwrite64")(file, bytes, length, offset);
}
int ftruncate64(int file, off64_t length) noexcept {
    countChange();
    return next<int(int, off64_t)>("ftruncate64")(file, length);
}
int fallocate64(int file, int mode, off64_t offset, off64_t length) {
    countChange();
    return next<decltype(fallocate64)>("fallocate64")(file, mode, offset, length);
}
int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
    countChange();
    return next<decltype(posix_spawn)>("posix_spawn")(process, path, actions, attributes, arguments, environment);
}
#pragma GCC visibility pop
}

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

    /// How a process ended that starts, saves in several schemes and resets, and is killed at that change of a file.
    static int lifeUntilChange(int count) {
        const pid_t process = ::fork();
        if (process == 0) {
            g_nChangesLeft = count;
            Device device;
            bool isRight = device.bringUp() == 1 && device.controller->setParamMode(0) == 1;
            for (const int scheme : {1, 2, 1})
                isRight = isRight && device.controller->setParamScheme(scheme) == 1 &&
                          device.controller->setParameters("(1,9)(2,9)(3,9)") == 1 && device.controller->flush() == 1;
            ::_exit(isRight && device.controller->resetParameters() == 1 ? 0 : 1);
        }
        int status = 0;
        ::waitpid(process, &status, 0);
        return status;
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

// Killed at each change of a file in turn: of a first start, and on a device whose firmware has just got more schemes.
TEST_F(PowerCut, AtEveryChangeOfAFile) {
    const std::string folder = m_Root.path() + "/mnt/mtd/code/config_file";
    const std::string fresh = m_Root.path() + "/fresh";
    const std::string grown = m_Root.path() + "/grown";
    const std::string morning = "(500,1)(501,8)(502,0)(503,12)(504,0)";
    const std::string usersSet = "(1,7)(2,7)(3,7)";
    m_Root.writeSchemeCount(1);
    {
        Device device;
        ASSERT_EQ(device.bringUp(), 1);
        ASSERT_EQ(device.controller->setParameters(usersSet + morning), 1);
        ASSERT_EQ(device.controller->flush(), 1);
    }
    std::filesystem::create_directory(fresh);
    std::filesystem::rename(folder, grown);
    m_Root.writeSchemeCount(3);

    for (const std::string& before : {fresh, grown}) {
        int kills = 0;
        for (bool isKilled = true; isKilled; ++kills) {
            SCOPED_TRACE(testing::Message() << before << ", killed at change " << kills);
            ASSERT_LT(kills, 500);
            std::filesystem::remove_all(folder);
            std::filesystem::copy(before, folder, std::filesystem::copy_options::recursive);
            const int status = lifeUntilChange(kills);
            isKilled = WIFSIGNALED(status);
            ASSERT_TRUE(isKilled || WEXITSTATUS(status) == 0);

            Device device;
            ASSERT_EQ(device.bringUp(), 1);
            int number = -1;
            EXPECT_EQ(device.controller->getParamSchemeFromFile(number), 1);
            EXPECT_TRUE(number >= 0 && number <= 2) << number;
            EXPECT_EQ(device.controller->getParamSchemeModeFromFile(number), 1);
            EXPECT_TRUE(number == 0 || number == 1) << number;
            for (int scheme = 0; scheme < 3; ++scheme) {
                std::string text;
                ASSERT_EQ(device.controller->readParamByScheme(scheme, text), 1);
                const auto has = [&text](const std::string& group) { return text.find(group) != std::string::npos; };
                const bool isUsers = has(usersSet);
                EXPECT_TRUE(has("(1,50)(2,40)(3,90)") || isUsers || has("(1,9)(2,9)(3,9)")) << text;
                // A new scheme takes no part until somebody says so; what the user had saved is whole.
                EXPECT_TRUE(has(scheme > 0 ? "(500,0)" : "(500,1)")) << scheme << text;
                EXPECT_TRUE(!isUsers || has(morning)) << text;
                EXPECT_TRUE(!isUsers || scheme == 0);
            }
            EXPECT_EQ(device.controller->flush(), 1); // so every parameter has a value
        }
        EXPECT_GT(kills, 20);
    }
}
