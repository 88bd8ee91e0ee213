#include "FullDisk.h"
#include "host/BRFile.h"
#include "host/BRLogger.h"
#include "host/DiskManager.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr const char* FILE_PATH = "/mnt/mtd/code/config_file/sensor1.cfg";

int replace(const std::string& text, const char* path = FILE_PATH) {
    BRFile file;
    return file.open(path, BRFile::Replace) == 0 ? -2 : file.write(text.data(), static_cast<int>(text.size()));
}

TEST(HostPath, staysUnderTheRoot) {
    EXPECT_EQ(sensorhost::hostPath("/a/../../b"), "/a/../../b");
    sensorhost::setRootFolder("/r/oot/");
    EXPECT_EQ(sensorhost::getRootFolder(), "/r/oot");
    EXPECT_EQ(sensorhost::hostPath("/mnt/mtd/x.cfg"), "/r/oot/mnt/mtd/x.cfg");
    EXPECT_EQ(sensorhost::hostPath("/../../etc//passwd"), "/r/oot/etc/passwd");
    EXPECT_EQ(sensorhost::hostPath("/a/./b/../../../../c"), "/r/oot/c");
    EXPECT_EQ(sensorhost::hostPath("/.."), "/r/oot");
    EXPECT_EQ(sensorhost::hostPath("/a/..b/..."), "/r/oot/a/..b/...");
    EXPECT_EQ(sensorhost::hostPath("relative/x"), "relative/x");
    sensorhost::setRootFolder("/");
    EXPECT_EQ(sensorhost::hostPath("/x"), "/x");
    sensorhost::setRootFolder("");
}

TEST(BRFile, replacesAndReadsAsAWhole) {
    const TempRoot root;
    for (const std::string& text : {std::string("(1,50)(2,-3)"), std::string("(1,5)"), std::string(),
                                    std::string(10'000, 'x'), std::string("a\0b", 3)}) {
        ASSERT_EQ(replace(text), static_cast<int>(text.size()));
        EXPECT_EQ(root.read(FILE_PATH), text);
        BRFile file;
        ASSERT_NE(file.open(FILE_PATH, BRFile::Read), 0);
        EXPECT_EQ(file.getLength(), static_cast<long long>(text.size()));
        std::string whole(text.size() + 10, '?');
        const int half = static_cast<int>(text.size() / 2);
        EXPECT_EQ(file.read(whole.data(), half), half);
        EXPECT_EQ(file.read(whole.data() + half, static_cast<int>(whole.size()) - half),
                  static_cast<int>(text.size()) - half);
        EXPECT_EQ(whole.substr(0, text.size()), text);
        EXPECT_EQ(file.read(whole.data(), 1), 0);
    }
}

TEST(BRFile, replacingKeepsTheFileItself) {
    const TempRoot root;
    ASSERT_EQ(replace("one"), 3);
    struct stat before {};
    ::stat(root.path(FILE_PATH).c_str(), &before);
    {
        BRFile file;
        ASSERT_NE(file.open(FILE_PATH, BRFile::Replace), 0);
        EXPECT_EQ(root.read(FILE_PATH), "one");
        EXPECT_EQ(file.write("second", 6), 6);
        EXPECT_EQ(file.write("2nd", 3), 3);
    }
    struct stat after {};
    ::stat(root.path(FILE_PATH).c_str(), &after);
    EXPECT_EQ(root.read(FILE_PATH), "2nd");
    EXPECT_EQ(before.st_ino, after.st_ino);
    BRFile untouched;
    ASSERT_NE(untouched.open(FILE_PATH, BRFile::Replace), 0);
    untouched.close();
    EXPECT_EQ(root.read(FILE_PATH), "2nd");
}

TEST(BRFile, refusesWhatIsNoFile) {
    const TempRoot root;
    root.write("/folder/file", "text");
    ASSERT_EQ(::mkfifo(root.path("/pipe").c_str(), 0600), 0);
    BRFile file;
    for (const char* path : {"", "/folder", "/missing", "/folder/file/below", "/pipe"}) {
        EXPECT_EQ(file.open(path, BRFile::Read), 0) << path;
        if (std::string(path) != "/missing") {
            EXPECT_EQ(file.open(path, BRFile::Replace), 0) << path;
        }
    }
    EXPECT_EQ(file.open(nullptr, BRFile::Read), 0);
    EXPECT_EQ(file.open("/folder/file", 7), 0);
    std::array<char, 4> buffer{};
    EXPECT_EQ(file.getLength(), -1);
    EXPECT_EQ(file.read(buffer.data(), 4), -1);
    EXPECT_EQ(file.write("x", 1), -1);
    ASSERT_NE(file.open("/folder/file", BRFile::Read), 0);
    EXPECT_EQ(file.write("x", 1), -1);
    EXPECT_EQ(file.read(buffer.data(), -1), -1);
    EXPECT_EQ(file.read(nullptr, 1), -1);
    file.close();
    EXPECT_EQ(root.read("/folder/file"), "text");

    EXPECT_NE(BRFile::isExist("/folder/file"), 0);
    EXPECT_NE(DiskManager::isFileExist("/folder/file"), 0);
    EXPECT_EQ(BRFile::isExist("/folder"), 0);
    EXPECT_EQ(DiskManager::isFileExist("/missing"), 0);
    EXPECT_EQ(BRFile::isExist(nullptr), 0);
}

TEST(BRFile, aFileThatTakesNoBytesGivesAnError) {
    // No root: a file of the system that cannot be allocated and refuses every write, for the superuser too.
    EXPECT_LT(replace("text", "/proc/self/limits"), 0);
    EXPECT_LT(replace("text", "/no-such-folder/file"), 0);
    EXPECT_EQ(DiskManager::isFileExist("/no-such-folder/file"), 0);
}

TEST(BRFile, aFullDiskLeavesTheOldText) {
    const TempRoot root;
    const std::string old(600, 'o');
    ASSERT_EQ(replace(old), 600);
    {
        const FullDisk disk(1000);
        EXPECT_EQ(replace(std::string(5000, 'n')), -1);
        EXPECT_EQ(root.read(FILE_PATH), old);
        EXPECT_EQ(replace(std::string(700, 'm')), 700);
        EXPECT_EQ(replace(old), 600);
    }
    {
        // Not even the old length can be written again.
        const FullDisk disk(300);
        EXPECT_EQ(replace(std::string(500, 'n')), -1);
    }
    EXPECT_EQ(root.read(FILE_PATH).size(), old.size());
    const FullDisk disk(0);
    EXPECT_EQ(replace("text", "/new/file"), -1);
    EXPECT_FALSE(root.exists("/new/file"));
}

/// Replaces the text in a child that is killed at its n-th stop, where a stop is the start or the end of a system call.
/// False if the child ended before.
bool replaceAndKill(const std::string& text, int stops) {
    std::fflush(nullptr); // what is buffered must not be written twice
    const pid_t child = ::fork();
    if (child == 0) {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        replace(text);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    for (int i = 0; i < stops && WIFSTOPPED(status); ++i) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        ::waitpid(child, &status, 0);
    }
    if (WIFSTOPPED(status)) {
        ::kill(child, SIGKILL);
        ::waitpid(child, &status, 0);
    }
    return WIFSIGNALED(status);
}

bool canTrace() {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string upToZero(const std::string& text) { return text.substr(0, text.find('\0')); }

TEST(BRFile, aProcessKilledAtAnySystemCallLeavesTheOldOrTheNewText) {
    const TempRoot root;
    const std::array<std::string, 4> texts{std::string(700, 'o'), std::string(900, 'n'), std::string(300, 's'),
                                           std::string(300, 't')};
    if (!canTrace()) {
        // An emulator without tracing: kills at moments of chance instead.
        for (int i = 0; i < 50; ++i) {
            const pid_t child = ::fork();
            if (child == 0)
                for (std::size_t n = 0;; ++n)
                    replace(texts[n % texts.size()]);
            std::this_thread::sleep_for(std::chrono::microseconds(3000 + i * 700));
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            const std::string left = upToZero(root.read(FILE_PATH));
            ASSERT_TRUE(left == "<none>" || left.empty() || std::count(texts.begin(), texts.end(), left) == 1);
        }
        return;
    }
    for (std::size_t from = 0; from < texts.size(); ++from) {
        const std::string& old = texts[from];
        const std::string& fresh = texts[(from + 1) % texts.size()];
        int keptOld = 0;
        int gotNew = 0;
        for (int stops = 1;; ++stops) {
            ASSERT_EQ(replace(old), static_cast<int>(old.size()));
            if (!replaceAndKill(fresh, stops))
                break;
            const std::string left = upToZero(root.read(FILE_PATH));
            ASSERT_TRUE(left == old || left == fresh) << "killed at stop " << stops;
            keptOld += left == old ? 1 : 0;
            gotNew += left == fresh ? 1 : 0;
        }
        EXPECT_EQ(root.read(FILE_PATH), fresh);
        EXPECT_GE(keptOld, 4);
        EXPECT_GE(gotNew, 2);
    }
}

constexpr const char* LOG_PATH = "/mnt/mtd/log/SensorError.log";

TEST(BRLogger, writesLinesWithTimeAndTag) {
    const TempRoot root;
    sensorhost::installClock(std::make_shared<sensorhost::SimulatedClock>(7, 5));
    BRLogger log;
    log.writeLog("SensorError", "before init");
    ASSERT_NE(log.init(LOG_PATH, 10240, 3), 0);
    log.writeLog("SensorError", "without end");
    log.writeLog("SensorError", "with end\n");
    log.writeLog(nullptr, nullptr);
    sensorhost::installClock(nullptr);
    EXPECT_EQ(root.read(LOG_PATH), "2024-01-01 07:05:00 SensorError without end\n"
                                   "2024-01-01 07:05:00 SensorError with end\n"
                                   "2024-01-01 07:05:00  \n");
}

TEST(BRLogger, rotatesAndKeepsSoManyFiles) {
    const TempRoot root;
    BRLogger log;
    BRLogger another;
    ASSERT_NE(log.init(LOG_PATH, 200, 3), 0);
    ASSERT_NE(another.init(LOG_PATH, 200, 3), 0);
    for (int i = 0; i < 40; ++i)
        (i % 2 == 0 ? log : another).writeLog("T", ("line " + std::to_string(i)).c_str());
    log.writeLog("T", std::string(1000, 'x').c_str());
    const std::string base = LOG_PATH;
    for (const char* end : {"", ".1", ".2"}) {
        const std::string text = root.read(base + end);
        EXPECT_LE(text.size(), 200U) << end;
        EXPECT_EQ(text.back(), '\n') << end;
    }
    EXPECT_EQ(root.read(base).size(), 200U);
    EXPECT_NE(root.read(base + ".1").find("line 39\n"), std::string::npos);
    EXPECT_FALSE(root.exists(base + ".3"));
}

TEST(BRLogger, aFullDiskCostsWholeLinesOnly) {
    const TempRoot root;
    BRLogger log;
    ASSERT_NE(log.init(LOG_PATH, 10240, 3), 0);
    log.writeLog("T", "kept");
    const std::string before = root.read(LOG_PATH);
    {
        const FullDisk disk(before.size() + 10);
        log.writeLog("T", "lost");
        EXPECT_EQ(root.read(LOG_PATH), before);
    }
    log.writeLog("T", "again");
    EXPECT_EQ(root.read(LOG_PATH).size(), before.size() + before.size() + 1);
}

TEST(BRLogger, anUnwritablePathGivesNoLog) {
    const TempRoot root;
    root.write("/file", "text");
    BRLogger log;
    EXPECT_EQ(log.init("/file/below/x.log", 100, 3), 0);
    EXPECT_EQ(log.init("", 100, 3), 0);
    EXPECT_EQ(log.init(nullptr, 100, 3), 0);
    EXPECT_EQ(log.init("/x.log", 0, 3), 0);
    EXPECT_EQ(log.init("/x.log", 100, 0), 0);
    log.writeLog("T", "nowhere");
    EXPECT_EQ(root.read("/file"), "text");
    EXPECT_FALSE(root.exists("/x.log"));
}

} // namespace
