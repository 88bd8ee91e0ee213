#include "host/SystemHelper.h"
#include "host/linux/HostSettings.h"
#include "support/TempRoot.h"

#include <chrono>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

TEST(SystemCommand, theLibrarysLinesActUnderTheRoot) {
    // A name that a shell would take apart, were it not quoted.
    const TempRoot root("a b'c $HOME;*\"");
    root.write("/mnt/one.cfg", "1");
    EXPECT_EQ(sy_system("cp /mnt/one.cfg /mnt/two.cfg", 30), 0);
    EXPECT_EQ(root.read("/mnt/two.cfg"), "1");
    EXPECT_EQ(sy_system("mv /mnt/one.cfg /elsewhere/deeper/three.cfg", 30), 0);
    EXPECT_EQ(root.read("/elsewhere/deeper/three.cfg"), "1");
    EXPECT_FALSE(root.exists("/mnt/one.cfg"));
    EXPECT_EQ(sy_system("cp /mnt/two.cfg /start/sensorInit.sh -rf", 30), 0);
    EXPECT_EQ(root.read("/start/sensorInit.sh"), "1");
    EXPECT_EQ(sy_system("rm /mnt/two.cfg", 30), 0);
    EXPECT_FALSE(root.exists("/mnt/two.cfg"));
    EXPECT_NE(sy_system("rm /mnt/two.cfg 2>/dev/null", 30), 0);
    EXPECT_NE(sy_system("cp /mnt/missing /mnt/x 2>/dev/null", 30), 0);
}

TEST(SystemCommand, pathsAreFoundInAllTheirSpellings) {
    const TempRoot root("it's");
    root.write("/etc/a b", "quoted");
    root.write("/d/1.cfg", "1");
    root.write("/d/2.cfg", "2");
    EXPECT_EQ(sy_system("cp \"/etc/a b\" '/etc/c d'", 30), 0);
    EXPECT_EQ(root.read("/etc/c d"), "quoted");
    EXPECT_EQ(sy_system("cat /d/*.cfg>/sum; rm -rf /d/", 30), 0);
    EXPECT_EQ(root.read("/sum"), "12");
    EXPECT_FALSE(root.exists("/d"));
    EXPECT_EQ(sy_system("dd if=/sum of=/copy status=none", 30), 0);
    EXPECT_EQ(root.read("/copy"), "12");
    EXPECT_EQ(sy_system("cp /../../sum /e/../../up", 30), 0);
    EXPECT_EQ(root.read("/up"), "12");
    EXPECT_EQ(sy_system("cat \"/x/../../../etc/passwd\"", 30), -1);
    EXPECT_EQ(sy_system("echo 'no /sum path' >/said", 30), 0);
    EXPECT_EQ(root.read("/said"), "no /sum path\n");
}

TEST(SystemCommand, givesTheExitStatus) {
    EXPECT_EQ(sy_system("exit 7", 30), 7);
    EXPECT_EQ(sy_system("kill -TERM $$", 30), 128 + 15);
    EXPECT_EQ(sy_system("cat", 30), 0) << "standard input is empty";
    EXPECT_EQ(sy_system("no-such-command 2>/dev/null", 30), 127);
    EXPECT_EQ(sy_system(nullptr, 30), -1);
    EXPECT_EQ(sy_system("true", 0), -1);
}

TEST(SystemCommand, aLineThatRunsTooLongIsEndedWithAllItStarted) {
    const TempRoot root;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(sy_system("(sleep 3; echo late >/late) & trap '' TERM; while :; do sleep 60; done", 1), -1);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);
    EXPECT_EQ(sy_system("ps -eo args 2>/dev/null | grep -q '[e]cho late >'", 30), 1) << "a process was left";
}

int remember(const char* reason, void* context) {
    *static_cast<std::string*>(context) = reason;
    return 5;
}

TEST(SystemHelper, asksTheProgramForARestart) {
    std::string reason;
    sensorhost::setRebootHandler(&remember, &reason);
    EXPECT_EQ(SystemHelper::rebootDevice("new module"), 5);
    EXPECT_EQ(reason, "new module");
    sensorhost::setRebootHandler(nullptr, nullptr);
    EXPECT_EQ(SystemHelper::rebootDevice("nobody listens"), 0);
}

} // namespace
