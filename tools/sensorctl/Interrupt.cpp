#include "Interrupt.h"

#include "Failure.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstdint>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace sensorctl {

namespace {

std::atomic<int> g_nSignals{0};
int g_nEvent = -1;

void onSignal(int) {
    if (g_nSignals.fetch_add(1) > 0)
        ::_exit(Interrupted);
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(g_nEvent, &one, sizeof one);
}

} // namespace

void Interrupt::install() {
    g_nEvent = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        ::sigaction(number, &action, nullptr);
    // A reader that left shows as a failed write, so that the controller is still taken down in order.
    std::signal(SIGPIPE, SIG_IGN);
}

bool Interrupt::isRequested() { return g_nSignals > 0; }

bool Interrupt::waitInput(int descriptor, std::chrono::milliseconds span) {
    const auto end = std::chrono::steady_clock::now() + span;
    for (;;) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        if (isRequested() || rest < 0)
            return false;
        pollfd entries[2] = {{g_nEvent, POLLIN, 0}, {descriptor, POLLIN, 0}};
        const int ready = ::poll(entries, 2, static_cast<int>(std::min<std::int64_t>(rest, INT_MAX)));
        if (ready > 0 && entries[1].revents != 0)
            return !isRequested();
        if (ready == 0 && std::chrono::steady_clock::now() >= end)
            return false;
    }
}

bool Interrupt::sleep(std::chrono::milliseconds span) {
    waitInput(-1, span);
    return !isRequested();
}

} // namespace sensorctl
