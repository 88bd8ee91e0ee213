#include "host/SystemHelper.h"
#include "host/linux/HostRecords.h"
#include "host/linux/HostSettings.h"
#include "support/TempRoot.h"

#include <chrono>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

TEST(SystemCommand, LinesActUnderTheRootInAllTheirSpellings) {
    // A name that a shell would take apart, were it not quoted.
    const TempRoot root("a b'c $HOME;*\"");
    root.write("/mnt/one.cfg", "1");
    root.write("/etc/a b", "quoted");
    root.write("/d/1.cfg", "1");
    root.write("/d/2.cfg", "2");
    // The line, its status, a file and what it holds then.
    using Row = std::tuple<const char*, int, const char*, const char*>;
    for (const auto& [line, status, file, text] :
         {Row{"cp /mnt/one.cfg /mnt/two.cfg", 0, "/mnt/two.cfg", "1"},
          Row{"mv /mnt/one.cfg /elsewhere/deeper/three.cfg", 0, "/elsewhere/deeper/three.cfg", "1"},
          Row{"cp /mnt/two.cfg /start/sensorInit.sh -rf", 0, "/start/sensorInit.sh", "1"},
          Row{"rm /mnt/two.cfg", 0, "/mnt/two.cfg", "<none>"},
          Row{"rm /mnt/two.cfg 2>/dev/null", 1, "/mnt/one.cfg", "<none>"},
          Row{"cp /mnt/missing /mnt/x 2>/dev/null", 1, "/mnt/x", "<none>"},
          Row{"cp \"/etc/a b\" '/etc/c d'", 0, "/etc/c d", "quoted"},
          Row{"cat /d/*.cfg>/sum; rm -rf /d/", 0, "/sum", "12"},
          Row{"dd if=/sum of=/copy status=none", 0, "/copy", "12"}, Row{"cp /../../sum /e/../../up", 0, "/up", "12"},
          Row{"cat \"/x/../../../etc/passwd\"", -1, "/d/1.cfg", "<none>"},
          Row{"echo 'no /sum path' >/said", 0, "/said", "no /sum path\n"}}) {
        EXPECT_EQ(sy_system(line, 30), status) << line;
        EXPECT_EQ(root.read(file), text) << line;
    }
}

TEST(SystemCommand, GivesAndRecordsTheExitStatus) {
    const TempRoot root;
    sensorhost::recordCommands(true);
    // Standard input is empty, so that cat ends.
    for (const auto& [line, status] : {std::pair{"exit 7", 7},
                                       {"kill -TERM $$", 128 + 15},
                                       {"cat", 0},
                                       {"cat /none 2>/dev/null", 1},
                                       {"no-such-command 2>/dev/null", 127}}) {
        EXPECT_EQ(sy_system(line, 30), status);
        EXPECT_EQ(sensorhost::getCommands().back().line, line);
        EXPECT_EQ(sensorhost::getCommands().back().result, status);
    }
    for (std::size_t i = 0; i < sensorhost::MostCommandRecords; ++i)
        EXPECT_EQ(i % 2 == 0 ? sy_system(nullptr, 30) : sy_system("true", 0), -1);
    EXPECT_EQ(sensorhost::getCommands().size(), sensorhost::MostCommandRecords);
    EXPECT_EQ(sensorhost::getCommands().front().line, "");
    sensorhost::recordCommands(false);
    sy_system("true", 30);
    EXPECT_EQ(sensorhost::getCommands().back().result, -1);
    sensorhost::recordCommands(true);
    EXPECT_TRUE(sensorhost::getCommands().empty());
    sensorhost::recordCommands(false);
}

TEST(SystemCommand, ALineThatRunsTooLongIsEndedWithAllItStarted) {
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

TEST(SystemHelper, AsksTheProgramForARestart) {
    std::string reason;
    sensorhost::setRebootHandler(&remember, &reason);
    EXPECT_EQ(SystemHelper::rebootDevice("new module"), 5);
    EXPECT_EQ(reason, "new module");
    sensorhost::setRebootHandler(nullptr, nullptr);
    EXPECT_EQ(SystemHelper::rebootDevice("nobody listens"), 0);
}

} // namespace
