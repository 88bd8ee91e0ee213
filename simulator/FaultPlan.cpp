#include "simulator/FaultPlan.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace camerasim {

namespace {

struct KindRow {
    FaultKind kind;
    std::string_view name;
    std::string_view meaning;
    int numbers;
    int argument = -1;
    int extra = -1;
};

constexpr auto Kinds = std::to_array<KindRow>({
    {FaultKind::Silence, "silence", "no reply", 0},
    {FaultKind::Late, "late", "the reply comes N milliseconds late (1000)", 1, 1000},
    {FaultKind::Truncate, "truncate", "only the first N bytes of the reply come (1)", 1, 1},
    {FaultKind::Split, "split", "after N bytes of the reply (1) a pause of M milliseconds (100)", 2, 1, 100},
    {FaultKind::Merge, "merge", "the reply is held back and comes at once with the next one", 0},
    {FaultKind::NoiseBefore, "noise-before", "N random bytes before the reply (3)", 1, 3},
    {FaultKind::NoiseBetween, "noise-between", "N random bytes behind the reply's first frame (3)", 1, 3},
    {FaultKind::Flip, "flip", "bit M of byte N of the reply is inverted (both at random)", 2},
    {FaultKind::Duplicate, "duplicate", "the reply comes twice", 0},
    {FaultKind::Echo, "echo", "the command comes back before the reply", 0},
    {FaultKind::Refuse, "refuse", "the block refuses the command", 0},
    {FaultKind::Checksum, "checksum", "the reply's check byte is off by one", 0},
    {FaultKind::ShortWrite, "short-write", "a send takes only N bytes (all but one)", 1},
    {FaultKind::PortGone, "port-gone", "the port disappears for N milliseconds (500)", 1, 500},
    {FaultKind::Reboot, "reboot", "the block restarts with loss of state", 0},
});

constexpr int LargestNumber = 3'600'000;

const KindRow* findKind(std::string_view name) {
    const auto it = std::find_if(Kinds.begin(), Kinds.end(), [&](const KindRow& row) { return row.name == name; });
    return it == Kinds.end() ? nullptr : &*it;
}

/// The text before the first separator, which is taken off with it.
std::string_view takePart(std::string_view& rest, char separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

template <class Number>
bool parseNumber(std::string_view text, Number& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool parseWhere(std::string_view where, Fault& fault) {
    if (where == "every") {
        fault.last = FaultPlan::Forever;
        return true;
    }
    if (!where.empty() && where.back() == '+') {
        where.remove_suffix(1);
        fault.last = FaultPlan::Forever;
        return parseNumber(where, fault.first) && fault.first > 0;
    }
    std::string_view last = where;
    const std::string_view first = takePart(last, '-');
    if (!parseNumber(first, fault.first)) {
        return false;
    }
    fault.last = fault.first;
    if (first.size() < where.size() && !parseNumber(last, fault.last)) {
        return false;
    }
    return fault.first > 0 && fault.last >= fault.first;
}

/// Gives an empty text, or what is wrong with the entry.
std::string parseEntry(std::string_view entry, Fault& fault) {
    const std::string quoted = "fault \"" + std::string(entry) + "\": ";
    const std::size_t at = entry.find('@');
    if (at != std::string_view::npos && !parseWhere(entry.substr(at + 1), fault)) {
        return quoted + "after @ comes n, n-m, n+ or every, counted from 1";
    }
    std::string_view rest = entry.substr(0, at);
    const std::size_t numbers = static_cast<std::size_t>(std::count(rest.begin(), rest.end(), ':'));
    const std::string_view name = takePart(rest, ':');
    const KindRow* kind = findKind(name);
    if (kind == nullptr) {
        std::string known;
        for (const KindRow& row : Kinds) {
            known += (known.empty() ? "" : ", ") + std::string(row.name);
        }
        return quoted + "unknown kind \"" + std::string(name) + "\"; known are " + known;
    }
    fault.kind = kind->kind;
    if (numbers > static_cast<std::size_t>(kind->numbers)) {
        return quoted + std::string(name) + " takes at most " + std::to_string(kind->numbers) + " numbers";
    }
    for (std::size_t i = 0; i < numbers; ++i) {
        int& target = i == 0 ? fault.argument : fault.extra;
        if (!parseNumber(takePart(rest, ':'), target) || target < 0 || target > LargestNumber) {
            return quoted + "numbers go from 0 to " + std::to_string(LargestNumber);
        }
    }
    return {};
}

} // namespace

FaultPlan::FaultPlan(std::uint32_t seed) : m_Random(seed) {}

bool FaultPlan::add(std::string_view text, std::string& error) {
    std::vector<Fault> parsed;
    std::string_view rest = text;
    do {
        Fault fault;
        error = parseEntry(takePart(rest, ','), fault);
        if (!error.empty()) {
            return false;
        }
        parsed.push_back(fault);
    } while (!rest.empty());
    for (const Fault& fault : parsed) {
        add(fault);
    }
    return true;
}

void FaultPlan::add(const Fault& fault) {
    Fault& added = m_Faults.emplace_back(fault);
    const auto row = std::find_if(Kinds.begin(), Kinds.end(),
                                  [&](const KindRow& candidate) { return candidate.kind == fault.kind; });
    added.argument = fault.argument < 0 ? row->argument : fault.argument;
    added.extra = fault.extra < 0 ? row->extra : fault.extra;
    added.first += m_nExchange;
    added.last = fault.last > Forever - m_nExchange ? Forever : fault.last + m_nExchange;
}

void FaultPlan::clear() { m_Faults.clear(); }

std::vector<std::string_view> FaultPlan::names() {
    std::vector<std::string_view> list(Kinds.size());
    std::transform(Kinds.begin(), Kinds.end(), list.begin(), [](const KindRow& row) { return row.name; });
    return list;
}

std::string_view FaultPlan::describe(std::string_view name) {
    const KindRow* kind = findKind(name);
    return kind == nullptr ? std::string_view() : kind->meaning;
}

const Fault* FaultPlan::hit(FaultKind kind, unsigned ahead) const {
    const std::uint64_t exchange = m_nExchange + ahead;
    for (const Fault& fault : m_Faults) {
        if (fault.kind == kind && exchange >= fault.first && exchange <= fault.last) {
            return &fault;
        }
    }
    return nullptr;
}

} // namespace camerasim
