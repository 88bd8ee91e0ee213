#include "FullDisk.h"
#include "host/BRFile.h"
#include "host/BRLogger.h"
#include "host/DiskManager.h"
#include "host/SystemHelper.h"
#include "host/XmlConfigureTool.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Names of what was synced, in order.
std::string g_strSynced;

int noteSync(long call, int descriptor) {
    std::array<char, 4096> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    const std::string name(path.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    g_strSynced += name.substr(name.rfind('/') + 1) + ' ';
    return static_cast<int>(::syscall(call, descriptor));
}

} // namespace

// In place of the C library's, for the host classes too.
extern "C" [[gnu::visibility("default")]] int fsync(int file) { return noteSync(SYS_fsync, file); }
extern "C" [[gnu::visibility("default")]] int fdatasync(int file) { return noteSync(SYS_fdatasync, file); }

namespace {

using sensorhost::AccessDenial;

constexpr const char* FilePath = "/mnt/mtd/code/config_file/sensor1.cfg";

int replace(const std::string& text, const char* path = FilePath) {
    BRFile file;
    return file.open(path, BRFile::Replace) == 0 ? -2 : file.write(text.data(), static_cast<int>(text.size()));
}

TEST(HostPath, StaysUnderTheRoot) {
    EXPECT_EQ(sensorhost::hostPath("/a/../../b"), "/a/../../b");
    sensorhost::setRootFolder("/r/oot/");
    EXPECT_EQ(sensorhost::getRootFolder(), "/r/oot");
    for (const auto& [device, host] : {std::pair{"/mnt/mtd/x.cfg", "/r/oot/mnt/mtd/x.cfg"},
                                       {"/../../etc//passwd", "/r/oot/etc/passwd"},
                                       {"/a/./b/../../../../c", "/r/oot/c"},
                                       {"/..", "/r/oot"},
                                       {"/a/..b/...", "/r/oot/a/..b/..."},
                                       {"relative/x", "relative/x"}})
        EXPECT_EQ(sensorhost::hostPath(device), host);
    sensorhost::setRootFolder("/");
    EXPECT_EQ(sensorhost::hostPath("/x"), "/x");
    sensorhost::setRootFolder("");
}

TEST(BRFile, ReplacesAndReadsAsAWhole) {
    const TempRoot root;
    ASSERT_EQ(replace("one"), 3);
    struct stat before {};
    struct stat after {};
    ::stat(root.path(FilePath).c_str(), &before);
    BRFile file;
    for (const std::string& text : {std::string("(1,50)(2,-3)"), std::string("(1,5)"), std::string(),
                                    std::string(10'000, 'x'), std::string("a\0b", 3)}) {
        ASSERT_EQ(replace(text), static_cast<int>(text.size()));
        EXPECT_EQ(root.read(FilePath), text);
        ASSERT_NE(file.open(FilePath, BRFile::Read), 0);
        EXPECT_EQ(file.getLength(), static_cast<long long>(text.size()));
        std::string whole(text.size() + 10, '?');
        const int half = static_cast<int>(text.size() / 2);
        EXPECT_EQ(file.read(whole.data(), half), half);
        EXPECT_EQ(file.read(whole.data() + half, static_cast<int>(whole.size()) - half),
                  static_cast<int>(text.size()) - half);
        EXPECT_EQ(whole.substr(0, text.size()), text);
        EXPECT_EQ(file.read(whole.data(), 1), 0);
    }
    ASSERT_NE(file.open(FilePath, BRFile::Replace), 0);
    EXPECT_EQ(file.write("second", 6), 6);
    EXPECT_EQ(file.write("2nd", 3), 3);
    EXPECT_NE(file.open(FilePath, BRFile::Replace), 0) << "and nothing is written";
    file.close();
    ::stat(root.path(FilePath).c_str(), &after);
    EXPECT_EQ(root.read(FilePath), "2nd");
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST(Files, WhatWasSavedIsOnTheDisk) {
    const TempRoot root;
    const auto synced = [](const char* action, auto save) {
        g_strSynced.clear();
        save();
        return action + (": " + g_strSynced);
    };
    const auto run = [](const char* line) { return [line] { EXPECT_EQ(sy_system(line, 30), 0); }; };
    EXPECT_EQ(synced("folders and file", [] { replace("1", "/a/b/1.cfg"); }), "folders and file: a root 1.cfg b ");
    EXPECT_EQ(synced("the same", [] { replace("1", "/a/b/1.cfg"); }), "the same: ");
    EXPECT_EQ(synced("replaced", [] { replace("22", "/a/b/1.cfg"); }), "replaced: 1.cfg ");
    EXPECT_EQ(synced("new", [] { replace("2", "/a/2.cfg"); }), "new: 2.cfg a ");
    EXPECT_EQ(synced("copy", run("cp /a/2.cfg /a/3.cfg")), "copy: 3.cfg a ");
    EXPECT_EQ(synced("move", run("mv /a/3.cfg /a/4.cfg")), "move: 4.cfg a ");
    EXPECT_EQ(synced("elsewhere", run("mv /a/4.cfg /a/b/5.cfg 2>/dev/null")), "elsewhere: 5.cfg b a ");
    root.write("/d/x", "");
    EXPECT_EQ(synced("folder", run("cp /a/2.cfg /a/b/5.cfg /a/../d/ -f")), "folder: 2.cfg d 5.cfg d ");
    EXPECT_EQ(synced("remove", run("rm /a/b/5.cfg")), "remove: ");
    EXPECT_EQ(synced("fail", [] { sy_system("cp /a/none /a/b/6.cfg 2>/dev/null", 30); }), "fail: ");
    ASSERT_EQ(::symlink("b/7.cfg", root.path("/a/7.link").c_str()), 0);
    EXPECT_EQ(synced("link", [] { replace("7", "/a/7.link"); }), "link: 7.cfg b ");
}

TEST(Files, AccessCanBeDeniedToTheSuperuserToo) {
    const TempRoot root;
    constexpr const char* Xml = "/a/x.xml";
    root.write(Xml, "<a/>");
    const auto seen = [&] {
        BRFile file;
        BRLogger log;
        XmlConfigureTool xml;
        std::string result = BRFile::isExist(Xml) != 0 ? "there" : "missing";
        result += file.open(Xml, BRFile::Read) != 0 && xml.open(Xml, 1, XmlConfigureTool::ReadOnly) != 0 ? " read" : "";
        const bool isWritten = xml.open(Xml, 1, XmlConfigureTool::Create) != 0 && xml.close() != 0;
        EXPECT_EQ(isWritten, file.open(Xml, BRFile::Replace) != 0);
        EXPECT_EQ(isWritten, log.init(Xml, 100, 1) != 0);
        return result + (isWritten ? " write" : "");
    };
    for (const auto& [denial, expected] : {std::pair{AccessDenial::Reading, "there write"},
                                           {AccessDenial::Writing, "there read"},
                                           {AccessDenial::Both, "there"},
                                           {AccessDenial::None, "there read write"}}) {
        sensorhost::denyAccess("/a/../a/x.xml", denial);
        EXPECT_EQ(seen(), expected);
    }
}

TEST(BRFile, RefusesWhatIsNoFile) {
    const TempRoot root;
    root.write("/folder/file", "text");
    ASSERT_EQ(::mkfifo(root.path("/pipe").c_str(), 0600), 0);
    BRFile file;
    EXPECT_EQ(file.open("/missing", BRFile::Read), 0);
    for (const char* path : {"", "/folder", "/folder/file/below", "/pipe"}) {
        EXPECT_EQ(file.open(path, BRFile::Read), 0) << path;
        EXPECT_EQ(file.open(path, BRFile::Replace), 0) << path;
    }
    EXPECT_EQ(file.open(nullptr, BRFile::Read) + file.open("/folder/file", 7), 0);
    std::array<char, 4> buffer{};
    EXPECT_EQ(file.getLength(), -1);
    EXPECT_EQ(file.read(buffer.data(), 4), -1);
    EXPECT_EQ(file.write("x", 1), -1);
    ASSERT_NE(file.open("/folder/file", BRFile::Read), 0);
    EXPECT_EQ(file.write("x", 1), -1);
    EXPECT_EQ(file.read(buffer.data(), -1), -1);
    EXPECT_EQ(file.read(nullptr, 1), -1);
    EXPECT_EQ(root.read("/folder/file"), "text");

    EXPECT_NE(DiskManager::isFileExist("/folder/file"), 0);
    EXPECT_EQ(BRFile::isExist("/folder") + BRFile::isExist("/missing") + BRFile::isExist(nullptr), 0);

    // Not under a root: a file of the system that refuses every write, for the superuser too.
    sensorhost::setRootFolder("");
    EXPECT_LT(replace("text", "/proc/self/limits"), 0);
    EXPECT_LT(replace("text", "/no-such-folder/file"), 0);
    EXPECT_EQ(BRFile::isExist("/no-such-folder/file"), 0);
}

TEST(BRFile, AFullDiskLeavesTheOldText) {
    const TempRoot root;
    const std::string old(600, 'o');
    ASSERT_EQ(replace(old), 600);
    {
        const FullDisk disk(1000);
        EXPECT_EQ(replace(std::string(5000, 'n')), -1);
        EXPECT_EQ(root.read(FilePath), old);
        EXPECT_EQ(replace(std::string(700, 'm')), 700);
        EXPECT_EQ(replace(old), 600);
    }
    {
        // Not even the old length can be written again.
        const FullDisk disk(300);
        EXPECT_EQ(replace(std::string(500, 'n')), -1);
    }
    EXPECT_EQ(root.read(FilePath).size(), old.size());
    const FullDisk disk(0);
    EXPECT_EQ(replace("text", "/new/file"), -1);
    EXPECT_FALSE(root.exists("/new/file"));
}

constexpr int NotTraced = 77;

/// Replaces the text in a child that is killed at its n-th stop, where a stop is the start or the end of a system call.
/// What became of the child, as waitpid tells it: NotTraced is the status under an emulator without tracing.
int replaceAndKill(const std::string& text, int stops) {
    std::fflush(nullptr); // what is buffered must not be written twice
    const pid_t child = ::fork();
    if (child == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            ::_exit(NotTraced);
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
    return status;
}

/// The same where only the moment can be chosen, in microseconds.
void replaceAndKillAt(const std::array<std::string, 4>& texts, int moment) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
        for (std::size_t n = 0;; ++n)
            replace(texts[n % texts.size()]);
    std::this_thread::sleep_for(std::chrono::microseconds(moment));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

TEST(BRFile, AProcessKilledAtAnySystemCallLeavesTheOldOrTheNewText) {
    const TempRoot root;
    const std::array<std::string, 4> texts{std::string(700, 'o'), std::string(900, 'n'), std::string(300, 's'),
                                           std::string(300, 't')};
    const auto left = [&] {
        const std::string text = root.read(FilePath);
        return text.substr(0, text.find('\0'));
    };
    for (std::size_t from = 0; from < texts.size(); ++from) {
        const std::string& old = texts[from];
        const std::string& fresh = texts[(from + 1) % texts.size()];
        int keptOld = 0;
        int gotNew = 0;
        ASSERT_EQ(replace(old), static_cast<int>(old.size()));
        int status = replaceAndKill(fresh, 1);
        for (int stops = 1; WIFSIGNALED(status); status = replaceAndKill(fresh, ++stops)) {
            ASSERT_TRUE(left() == old || left() == fresh) << "killed at stop " << stops;
            keptOld += left() == old ? 1 : 0;
            gotNew += left() == fresh ? 1 : 0;
            ASSERT_EQ(replace(old), static_cast<int>(old.size()));
        }
        for (int i = 0; i < 15 && WEXITSTATUS(status) == NotTraced; ++i) {
            replaceAndKillAt(texts, 3000 + i * 2000);
            ASSERT_EQ(std::count(texts.begin(), texts.end(), left()), 1);
        }
        if (WEXITSTATUS(status) == NotTraced)
            continue;
        EXPECT_EQ(root.read(FilePath), fresh);
        EXPECT_GE(keptOld, 4);
        EXPECT_GE(gotNew, 2);
    }
}

constexpr const char* LogPath = "/mnt/mtd/log/SensorError.log";

class Log : public testing::Test {
protected:
    Log() { sensorhost::installClock(m_pClock); }
    ~Log() override { sensorhost::installClock(nullptr); }
    /// A line that fails, two that must not even be tried though nothing is in their way, one a minute after the first.
    void expectPause(const std::function<void()>& mend) {
        m_Log.writeLog("T", "lost");
        mend();
        m_Log.writeLog("T", "at once");
        m_pClock->advance(59);
        m_Log.writeLog("T", "too early");
        m_pClock->advance(2);
        m_Log.writeLog("T", "again");
        const std::string text = m_Root.read(LogPath);
        for (const char* lost : {"lost", "at once", "too early"})
            EXPECT_EQ(text.find(lost), std::string::npos) << text;
        EXPECT_TRUE(text.ends_with(" T again\n")) << text;
    }

    const TempRoot m_Root;
    const std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>(7, 5);
    BRLogger m_Log;
};

TEST_F(Log, HasLinesWithTimeAndTag) {
    m_Log.writeLog("SensorError", "before init");
    ASSERT_NE(m_Log.init(LogPath, 10240, 3), 0);
    m_Log.writeLog("SensorError", "without end");
    m_Log.writeLog("SensorError", "with end\n");
    m_Log.writeLog(nullptr, nullptr);
    EXPECT_EQ(m_Root.read(LogPath), "2024-01-01 07:05:00 SensorError without end\n"
                                    "2024-01-01 07:05:00 SensorError with end\n"
                                    "2024-01-01 07:05:00  \n");
}

TEST_F(Log, RotatesAndKeepsSoManyFiles) {
    BRLogger another;
    ASSERT_NE(m_Log.init(LogPath, 200, 3), 0);
    ASSERT_NE(another.init(LogPath, 200, 3), 0);
    for (int i = 0; i < 40; ++i)
        (i % 2 == 0 ? m_Log : another).writeLog("T", ("line " + std::to_string(i)).c_str());
    m_Log.writeLog("T", std::string(1000, 'x').c_str());
    const std::string base = LogPath;
    for (const char* end : {"", ".1", ".2"}) {
        const std::string text = m_Root.read(base + end);
        EXPECT_LE(text.size(), 200U) << end;
        EXPECT_EQ(text.back(), '\n') << end;
    }
    EXPECT_EQ(m_Root.read(base).size(), 200U);
    EXPECT_NE(m_Root.read(base + ".1").find("line 39\n"), std::string::npos);
    EXPECT_FALSE(m_Root.exists(base + ".3"));
}

TEST_F(Log, IsLeftAloneForAMinuteOnceItFailed) {
    const std::string path = m_Root.path(LogPath);
    const auto remove = [&] { ASSERT_EQ(::remove(path.c_str()), 0); };
    m_Root.write("/mnt/mtd/log/x", "");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(m_Log.init(LogPath, 200, 2), 0);
    expectPause(remove);
    for (const char* device : {"/dev/full", "/dev/null"}) {
        remove();
        ASSERT_EQ(::symlink(device, path.c_str()), 0);
        expectPause(remove);
    }
    sensorhost::denyAccess(LogPath, AccessDenial::Writing);
    expectPause([] { sensorhost::denyAccess(LogPath, AccessDenial::None); });
    // Half a line would run into the next one.
    const std::string before = m_Root.read(LogPath);
    auto disk = std::make_unique<FullDisk>(before.size() + 10);
    expectPause([&] { disk.reset(); });
    EXPECT_EQ(m_Root.read(LogPath).size(), before.size() + std::string("2024-01-01 07:05:00 T again\n").size());

    // It does not rotate, so it must not grow.
    m_Root.write(std::string(LogPath) + ".1/in the way", "");
    for (int i = 0; i < 20; ++i)
        m_Log.writeLog("T", "filling up");
    EXPECT_LE(m_Root.read(LogPath).size(), 200U);
    EXPECT_GT(m_Root.read(LogPath).size(), 150U);
}

TEST_F(Log, AnImpossibleOneIsNone) {
    m_Root.write("/file", "text");
    EXPECT_EQ(m_Log.init("/file/below/x.log", 100, 3), 0);
    EXPECT_EQ(m_Log.init("", 100, 3) + m_Log.init(nullptr, 100, 3), 0);
    EXPECT_EQ(m_Log.init("/x.log", 0, 3) + m_Log.init("/x.log", 100, 0), 0);
    m_Log.writeLog("T", "nowhere");
    EXPECT_EQ(m_Root.read("/file"), "text");
    EXPECT_FALSE(m_Root.exists("/x.log"));
}

} // namespace
