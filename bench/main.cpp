// Figures with Google Benchmark's own flags, or the limits that the library promises: with --check-allocations those
// that are counts, with --check also those that are ratios against a floor measured in the same run. Exit code 1 if one
// is not kept.

#include "Measure.h"
#include "Workbench.h"
#include "drivers/binary/IBaseIT1SenseController.h"
#include "drivers/regtext/CMD7200SenseController.h"
#include "params/SensorCache.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <span>
#include <string>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr char BrightnessFrame[] = {'\x81', 0x01, 0x04, 0x4e, 0, 0, 0, 7, '\xff'};

/// The floor: the same frames over the same port with nothing around the system calls.
class BareLoop {
public:
    explicit BareLoop(const std::string& path) : m_nPort(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        termios line{};
        tcgetattr(m_nPort, &line);
        cfmakeraw(&line);
        line.c_cc[VMIN] = 0;
        line.c_cc[VTIME] = 0;
        tcsetattr(m_nPort, TCSANOW, &line);
    }
    ~BareLoop() { close(m_nPort); }
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    bool exchange(std::span<const char> command = BrightnessFrame, std::size_t replyLength = 3) const {
        if (write(m_nPort, command.data(), command.size()) != static_cast<ssize_t>(command.size()))
            return false;
        char reply[32];
        std::size_t received = 0;
        while (received < replyLength) {
            pollfd waiting{m_nPort, POLLIN, 0};
            if (poll(&waiting, 1, 1000) != 1)
                return false;
            const ssize_t count = read(m_nPort, reply + received, replyLength - received);
            if (count <= 0)
                return false;
            received += static_cast<std::size_t>(count);
        }
        return true;
    }

private:
    int m_nPort;
};

/// One write of each of the other families.
struct FamilyExchange {
    const char* name;
    int moduleId;
    std::span<const char> command;
    std::size_t replyLength;
    int (*make)(ISensorController&);
};

constexpr char TextCommand[] = {':', 'W', 'F', 'D', '9', 'E', '7', 'F'};
constexpr char BinaryCommand[] = {0x08, 0x01, 0x05, 0x02, 0x0a, 0x03, 0x7f, '\x9c'};
constexpr FamilyExchange Families[] = {
    {"register text", 22, TextCommand, sizeof TextCommand,
     [](ISensorController& controller) {
         return static_cast<CMD7200SenseController&>(controller).sendData({TextCommand, sizeof TextCommand});
     }},
    {"binary registers", 2, BinaryCommand, 5,
     [](ISensorController& controller) {
         char command[sizeof BinaryCommand];
         std::ranges::copy(BinaryCommand, command);
         return static_cast<IBaseIT1SenseController&>(controller).setParameterValue(command, sizeof command);
     }},
};

std::string allValues() {
    std::string text;
    workbench().controller().getParameters("(0)(1)(2)(3)(4)(5)(6)(7)(9)(10)(11)(12)(13)(14)(15)(16)(17)(19)(20)(56)(57)"
                                           "(58)(59)(60)(61)(62)(63)(500)(501)(502)(503)(504)",
                                           text);
    return text;
}

int sumWithFromChars(const std::string& text) {
    int sum = 0;
    for (const char *at = text.data(), *end = at + text.size(); at != end;) {
        int id = 0;
        int value = 0;
        at = std::from_chars(at + 1, end, id).ptr;
        at = std::from_chars(at + 1, end, value).ptr + 1;
        sum += id + value;
    }
    return sum;
}

void exchangeOverPty(benchmark::State& state) {
    for (auto unused : state)
        if (!workbench().controller().setParameterValue(BrightnessFrame, sizeof BrightnessFrame))
            state.SkipWithError("no answer");
}
BENCHMARK(exchangeOverPty)->UseRealTime();

void bareExchangeOverPty(benchmark::State& state) {
    const BareLoop loop(workbench().portPath());
    for (auto unused : state)
        if (!loop.exchange())
            state.SkipWithError("no answer");
}
BENCHMARK(bareExchangeOverPty)->UseRealTime();

void familyExchangeOverPty(benchmark::State& state) {
    const FamilyExchange& family = Families[state.range(0)];
    ISensorController& controller = *workbench().member(family.moduleId).controller;
    state.SetLabel(family.name);
    for (auto unused : state)
        if (!family.make(controller))
            state.SkipWithError("no answer");
}
BENCHMARK(familyExchangeOverPty)->DenseRange(0, std::size(Families) - 1)->UseRealTime();

void unchangedParameterString(benchmark::State& state) {
    const std::string text = allValues();
    for (auto unused : state)
        benchmark::DoNotOptimize(workbench().controller().setParameters(text));
}
BENCHMARK(unchangedParameterString);

void parseParameterString(benchmark::State& state) {
    const std::string text = allValues();
    SensorCache cache;
    for (auto unused : state) {
        cache.clear();
        benchmark::DoNotOptimize(cache.setSensorValues(text));
    }
}
BENCHMARK(parseParameterString);

void fromCharsOverParameterString(benchmark::State& state) {
    const std::string text = allValues();
    for (auto unused : state)
        benchmark::DoNotOptimize(sumWithFromChars(text));
}
BENCHMARK(fromCharsOverParameterString);

/// What a pass of the background thread adds while the scene is steady: its decision and its tuning, without its sleep.
void steadyPass(benchmark::State& state) {
    ISensorController& controller = workbench().onChipController();
    int gain = 0;
    for (auto unused : state) {
        controller.DNSwitchHandle();
        controller.setISPParam("DN", 1);
        controller.getCurrentGain(gain);
        controller.setISPParam("GAIN", gain);
    }
}
BENCHMARK(steadyPass);

/// Everything but the waits, which pass on the simulated clock; includes the destruction.
void bringUpBeyondItsWaits(benchmark::State& state) {
    workbench();
    for (auto unused : state)
        workbench().bringUpAgain();
}
BENCHMARK(bringUpBeyondItsWaits)->Unit(benchmark::kMillisecond)->UseRealTime();

bool report(const char* what, double figure, double limit) {
    const bool isKept = figure <= limit;
    std::printf("%-4s %-58s %8.3f  limit %g\n", isKept ? "ok" : "OVER", what, figure, limit);
    return isKept;
}

template <class Work>
double allocationsPer(int count, Work work) {
    work(); // warm up
    const std::size_t before = allocationCount();
    for (int i = 0; i < count; ++i)
        work();
    return static_cast<double>(allocationCount() - before) / count;
}

bool checkSpeed() {
    ISensorController& controller = workbench().controller();
    const std::string text = allValues();
    SensorCache cache;
    bool isKept = true;
    {
        constexpr int Exchanges = 2000;
        const BareLoop loop(workbench().portPath());
        bool isAnswered = true;
        const double ratio = medianRatio(
            [&] {
                for (int i = 0; i < Exchanges; ++i)
                    isAnswered &= controller.setParameterValue(BrightnessFrame, sizeof BrightnessFrame) == 1;
            },
            [&] {
                for (int i = 0; i < Exchanges; ++i)
                    isAnswered &= loop.exchange();
            });
        isKept &= isAnswered && report("exchange over a pty / bare write and read loop", ratio, 1.15);
    }
    for (const FamilyExchange& family : Families) {
        constexpr int Exchanges = 2000;
        Workbench::Member& member = workbench().member(family.moduleId);
        const BareLoop loop(member.portPath);
        bool isAnswered = true;
        const double ratio = medianRatio(
            [&] {
                for (int i = 0; i < Exchanges; ++i)
                    isAnswered &= family.make(*member.controller) == 1;
            },
            [&] {
                for (int i = 0; i < Exchanges; ++i)
                    isAnswered &= loop.exchange(family.command, family.replyLength);
            });
        isKept &= isAnswered && report((std::string("the same in ") + family.name).c_str(), ratio, 1.15);
    }
    constexpr int Parses = 20000;
    const double parsing = medianRatio(
        [&] {
            for (int i = 0; i < Parses; ++i) {
                cache.clear();
                benchmark::DoNotOptimize(cache.setSensorValues(text));
            }
        },
        [&] {
            for (int i = 0; i < Parses; ++i)
                benchmark::DoNotOptimize(sumWithFromChars(text));
        });
    isKept &= report("parsing a full parameter string / std::from_chars", parsing, 2.0);
    return isKept;
}

/// Counts, so a machine that others share does not matter.
bool checkAllocations() {
    ISensorController& controller = workbench().controller();
    const std::string text = allValues();
    std::string result;
    int value = 0;
    bool isKept = true;
    isKept &= report("allocations per unchanged full parameter string",
                     allocationsPer(100, [&] { controller.setParameters(text); }), 0);
    isKept &=
        report("allocations per exchange",
               allocationsPer(100, [&] { controller.setParameterValue(BrightnessFrame, sizeof BrightnessFrame); }), 0);
    isKept &= report("allocations per set of a changed value",
                     allocationsPer(20, [&] { controller.setParameter(1, value = 100 - value); }), 0);
    for (const FamilyExchange& family : Families)
        isKept &= report((std::string("allocations per exchange in ") + family.name).c_str(),
                         allocationsPer(100, [&] { family.make(*workbench().member(family.moduleId).controller); }), 0);
    isKept &=
        report("allocations per get of one value", allocationsPer(100, [&] { controller.getParameter(1, value); }), 0);
    isKept &= report("allocations per get of several values",
                     allocationsPer(100, [&] { controller.getParameters("(1)(2)(500)", result); }), 0);
    // The whole pass of a pipeline that is tuned, and of a block whose gain the tuning asks for in vain.
    ISensorController& onChip = workbench().onChipController();
    controller.ISPParamThreadInit();
    const auto perPass = [&isKept](const char* name, ISensorController& one) {
        one.DNChangeThreadBody();
        isKept &= report(name, allocationsPer(100, [&one] { one.DNChangeThreadBody(); }), 0);
    };
    perPass("allocations per pass of the on-chip pipeline", onChip);
    perPass("allocations per pass of a camera block", controller);
    return isKept;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--check") == 0)
        return (checkSpeed() ? 0 : 1) | (checkAllocations() ? 0 : 1);
    if (argc == 2 && std::strcmp(argv[1], "--check-allocations") == 0)
        return checkAllocations() ? 0 : 1;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
