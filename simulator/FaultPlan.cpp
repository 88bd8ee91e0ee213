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

constexpr auto kinds = std::to_array<KindRow>({
    {FaultKind::silence, "silence", "no reply", 0},
    {FaultKind::late, "late", "the reply comes N milliseconds late (1000)", 1, 1000},
    {FaultKind::truncate, "truncate", "only the first N bytes of the reply come (1)", 1, 1},
    {FaultKind::split, "split", "after N bytes of the reply (1) a pause of M milliseconds (100)", 2, 1, 100},
    {FaultKind::merge, "merge", "the reply is held back and comes at once with the next one", 0},
    {FaultKind::noiseBefore, "noise-before", "N random bytes before the reply (3)", 1, 3},
    {FaultKind::noiseBetween, "noise-between", "N random bytes behind the reply's first frame (3)", 1, 3},
    {FaultKind::flip, "flip", "bit M of byte N of the reply is inverted (both at random)", 2},
    {FaultKind::duplicate, "duplicate", "the reply comes twice", 0},
    {FaultKind::echo, "echo", "the command comes back before the reply", 0},
    {FaultKind::refuse, "refuse", "the block refuses the command", 0},
    {FaultKind::checksum, "checksum", "the reply's check byte is off by one", 0},
    {FaultKind::shortWrite, "short-write", "a send takes only N bytes (all but one)", 1},
    {FaultKind::portGone, "port-gone", "the port disappears for N milliseconds (500)", 1, 500},
    {FaultKind::reboot, "reboot", "the block restarts with loss of state", 0},
});

constexpr int largestNumber = 3'600'000;

const KindRow* findKind(std::string_view p_strName) {
    const auto it = std::find_if(kinds.begin(), kinds.end(), [&](const KindRow& row) { return row.name == p_strName; });
    return it == kinds.end() ? nullptr : &*it;
}

/// The text before the first separator, which is taken off with it.
std::string_view takePart(std::string_view& p_strRest, char p_cSeparator) {
    const std::size_t nEnd = std::min(p_strRest.find(p_cSeparator), p_strRest.size());
    const std::string_view strPart = p_strRest.substr(0, nEnd);
    p_strRest.remove_prefix(std::min(nEnd + 1, p_strRest.size()));
    return strPart;
}

template <class Number>
bool parseNumber(std::string_view p_strText, Number& p_nValue) {
    const auto result = std::from_chars(p_strText.data(), p_strText.data() + p_strText.size(), p_nValue);
    return result.ec == std::errc() && result.ptr == p_strText.data() + p_strText.size();
}

bool parseWhere(std::string_view p_strWhere, Fault& p_Fault) {
    if (p_strWhere == "every") {
        p_Fault.last = FaultPlan::forever;
        return true;
    }
    if (!p_strWhere.empty() && p_strWhere.back() == '+') {
        p_strWhere.remove_suffix(1);
        p_Fault.last = FaultPlan::forever;
        return parseNumber(p_strWhere, p_Fault.first) && p_Fault.first > 0;
    }
    std::string_view strLast = p_strWhere;
    const std::string_view strFirst = takePart(strLast, '-');
    if (!parseNumber(strFirst, p_Fault.first)) {
        return false;
    }
    p_Fault.last = p_Fault.first;
    if (strFirst.size() < p_strWhere.size() && !parseNumber(strLast, p_Fault.last)) {
        return false;
    }
    return p_Fault.first > 0 && p_Fault.last >= p_Fault.first;
}

/// Gives an empty text, or what is wrong with the entry.
std::string parseEntry(std::string_view p_strEntry, Fault& p_Fault) {
    const std::string strQuoted = "fault \"" + std::string(p_strEntry) + "\": ";
    const std::size_t nAt = p_strEntry.find('@');
    if (nAt != std::string_view::npos && !parseWhere(p_strEntry.substr(nAt + 1), p_Fault)) {
        return strQuoted + "after @ comes n, n-m, n+ or every, counted from 1";
    }
    std::string_view strRest = p_strEntry.substr(0, nAt);
    const std::size_t nNumbers = static_cast<std::size_t>(std::count(strRest.begin(), strRest.end(), ':'));
    const std::string_view strName = takePart(strRest, ':');
    const KindRow* pKind = findKind(strName);
    if (pKind == nullptr) {
        std::string strKnown;
        for (const KindRow& row : kinds) {
            strKnown += (strKnown.empty() ? "" : ", ") + std::string(row.name);
        }
        return strQuoted + "unknown kind \"" + std::string(strName) + "\"; known are " + strKnown;
    }
    p_Fault.kind = pKind->kind;
    if (nNumbers > static_cast<std::size_t>(pKind->numbers)) {
        return strQuoted + std::string(strName) + " takes at most " + std::to_string(pKind->numbers) + " numbers";
    }
    for (std::size_t i = 0; i < nNumbers; ++i) {
        int& nTarget = i == 0 ? p_Fault.argument : p_Fault.extra;
        if (!parseNumber(takePart(strRest, ':'), nTarget) || nTarget < 0 || nTarget > largestNumber) {
            return strQuoted + "numbers go from 0 to " + std::to_string(largestNumber);
        }
    }
    return {};
}

} // namespace

FaultPlan::FaultPlan(std::uint32_t p_nSeed) : m_Random(p_nSeed) {}

bool FaultPlan::add(std::string_view p_strText, std::string& p_strError) {
    std::vector<Fault> parsed;
    std::string_view strRest = p_strText;
    do {
        Fault fault;
        p_strError = parseEntry(takePart(strRest, ','), fault);
        if (!p_strError.empty()) {
            return false;
        }
        parsed.push_back(fault);
    } while (!strRest.empty());
    for (const Fault& fault : parsed) {
        add(fault);
    }
    return true;
}

void FaultPlan::add(const Fault& p_Fault) {
    Fault& added = m_Faults.emplace_back(p_Fault);
    const auto row = std::find_if(kinds.begin(), kinds.end(),
                                  [&](const KindRow& candidate) { return candidate.kind == p_Fault.kind; });
    added.argument = p_Fault.argument < 0 ? row->argument : p_Fault.argument;
    added.extra = p_Fault.extra < 0 ? row->extra : p_Fault.extra;
    added.first += m_nExchange;
    added.last = p_Fault.last > forever - m_nExchange ? forever : p_Fault.last + m_nExchange;
}

void FaultPlan::clear() { m_Faults.clear(); }

std::vector<std::string_view> FaultPlan::names() {
    std::vector<std::string_view> list;
    for (const KindRow& row : kinds) {
        list.push_back(row.name);
    }
    return list;
}

std::string_view FaultPlan::describe(std::string_view p_strName) {
    const KindRow* pKind = findKind(p_strName);
    return pKind == nullptr ? std::string_view() : pKind->meaning;
}

const Fault* FaultPlan::hit(FaultKind p_Kind, unsigned p_nAhead) const {
    const std::uint64_t nExchange = m_nExchange + p_nAhead;
    for (const Fault& fault : m_Faults) {
        if (fault.kind == p_Kind && nExchange >= fault.first && nExchange <= fault.last) {
            return &fault;
        }
    }
    return nullptr;
}

} // namespace camerasim
