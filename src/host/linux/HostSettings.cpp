#include "host/linux/HostSettings.h"

#include "host/SystemHelper.h"
#include "host/linux/ActiveClock.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

namespace sensorhost {

constinit std::atomic<ClockSource*> g_pActiveClock{nullptr};

namespace {

struct Settings {
    std::mutex mutex;
    std::string root;
    std::shared_ptr<ClockSource> clock;
    std::map<std::string, AccessDenial> denials;
    RebootHandler rebootHandler = nullptr;
    void* rebootContext = nullptr;
};

// Never destroyed: threads of the host may outlive the static objects.
Settings& settings() {
    static Settings* const Instance = new Settings;
    return *Instance;
}

} // namespace

void setRootFolder(const std::string& folder) {
    std::string root;
    if (!folder.empty()) {
        std::error_code error;
        root = std::filesystem::absolute(folder, error).lexically_normal().string();
        if (error)
            root = folder;
        while (!root.empty() && root.back() == '/')
            root.pop_back();
    }
    Settings& s = settings();
    const std::lock_guard guard(s.mutex);
    s.root = std::move(root);
}

std::string getRootFolder() {
    Settings& s = settings();
    const std::lock_guard guard(s.mutex);
    return s.root;
}

std::string hostPath(const std::string& devicePath) {
    if (devicePath.empty() || devicePath.front() != '/')
        return devicePath;
    std::string path = getRootFolder();
    if (path.empty())
        return devicePath;
    const std::size_t rootLength = path.size();
    std::string_view rest = devicePath;
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string_view name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(name.size());
        if (name == "..") {
            if (path.size() > rootLength)
                path.erase(path.rfind('/'));
        } else if (!name.empty() && name != ".") {
            path += '/';
            path += name;
        }
    }
    return path;
}

std::shared_ptr<ClockSource> holdActiveClock() {
    Settings& s = settings();
    const std::lock_guard guard(s.mutex);
    return s.clock;
}

void installClock(std::shared_ptr<ClockSource> clock) {
    Settings& s = settings();
    std::shared_ptr<ClockSource> previous = holdActiveClock();
    if (previous)
        previous->leave();
    if (clock)
        clock->enter();
    const std::lock_guard guard(s.mutex);
    s.clock = std::move(clock);
    g_pActiveClock.store(s.clock.get(), std::memory_order_release);
}

void denyAccess(const std::string& devicePath, AccessDenial denial) {
    const std::string path = hostPath(devicePath);
    Settings& s = settings();
    const std::lock_guard guard(s.mutex);
    if (denial == AccessDenial::None)
        s.denials.erase(path);
    else
        s.denials[path] = denial;
}

AccessDenial deniedAccess(const std::string& hostFile) {
    Settings& s = settings();
    const std::lock_guard guard(s.mutex);
    const auto found = s.denials.find(hostFile);
    return found != s.denials.end() ? found->second : AccessDenial::None;
}

void setRebootHandler(RebootHandler handler, void* context) {
    Settings& s = settings();
    const std::lock_guard guard(s.mutex);
    s.rebootHandler = handler;
    s.rebootContext = context;
}

} // namespace sensorhost

int SystemHelper::rebootDevice(const char* reason) {
    const char* const text = reason != nullptr ? reason : "";
    sensorhost::RebootHandler handler = nullptr;
    void* context = nullptr;
    {
        sensorhost::Settings& s = sensorhost::settings();
        const std::lock_guard guard(s.mutex);
        handler = s.rebootHandler;
        context = s.rebootContext;
    }
    if (handler != nullptr)
        return handler(text, context);
    std::fprintf(stderr, "a restart of the device was asked for: %s\n", text);
    return 0;
}
