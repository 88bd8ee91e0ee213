#include "uiconfig/TabList.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <utility>

namespace sensorcontrol {

namespace {

/// Leaves room at the end for tabs that are added there, and between them.
constexpr std::uint64_t MostDistance = std::uint64_t{1} << 32U;

/// The free places from one to what follows it; all of them if that is itself.
std::uint64_t roomBetween(const TabList::Tab& one, const TabList::Tab& next) { return next.place - one.place - 1; }

} // namespace

std::optional<int> keyOf(const TiXmlElement& element) {
    const TiXmlAttribute* const first = element.FirstAttribute();
    if (first == nullptr)
        return std::nullopt;
    // What the device's 32-bit long makes of it, on every machine.
    const long number = std::strtol(first->ValueStr().c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

TabList::TabList(TiXmlElement* root) : m_pRoot(root), m_Tabs{{.element = nullptr, .key = std::nullopt, .place = 0}} {
    TiXmlElement* tab = root != nullptr ? root->FirstChildElement() : nullptr;
    for (; tab != nullptr; tab = tab->NextSiblingElement())
        enter(std::prev(m_Tabs.end()), tab);
}

std::optional<TabList::Position> TabList::find(std::optional<int> key) {
    ++m_nSteps;
    const auto found = key ? m_ByKey.find(*key) : m_ByKey.end();
    return found != m_ByKey.end() ? std::optional(found->second.front()) : std::nullopt;
}

TabList::Position TabList::addAfter(Position tab, const TiXmlElement& element) {
    return enter(tab, m_pRoot->InsertAfterChild(tab->element, element)->ToElement());
}

TabList::Position TabList::addBefore(Position tab, const TiXmlElement& element) {
    return enter(std::prev(tab), m_pRoot->InsertBeforeChild(tab->element, element)->ToElement());
}

int TabList::remove(std::optional<int> key) {
    ++m_nSteps;
    const auto found = key ? m_ByKey.find(*key) : m_ByKey.end();
    if (found == m_ByKey.end())
        return 0;
    const std::vector<Position> tabs = std::move(found->second);
    m_ByKey.erase(found);
    for (const Position tab : tabs) {
        m_pRoot->RemoveChild(tab->element);
        m_Tabs.erase(tab);
        ++m_nSteps;
    }
    return static_cast<int>(tabs.size());
}

/// `previous` may be the head.
TabList::Position TabList::enter(Position previous, TiXmlElement* element) {
    ++m_nSteps;
    makeRoomBehind(previous);
    const std::uint64_t distance = std::min(roomBetween(*previous, *following(previous)) / 2 + 1, MostDistance);
    const Position entered = m_Tabs.insert(
        std::next(previous), {.element = element, .key = keyOf(*element), .place = previous->place + distance});
    if (entered->key) {
        std::vector<Position>& same = m_ByKey[*entered->key];
        same.push_back(entered);
        if (isBefore(*entered, *same.front()))
            std::swap(same.front(), same.back());
    }
    return entered;
}

// Order maintenance after Dietz and Sleator: of the tabs that follow, so many share the places up to the next one that
// the square of their number fits in. That makes a logarithm of steps for each tab that is added, wherever it goes.
void TabList::makeRoomBehind(Position tab) {
    std::uint64_t count = 1;
    Position end = following(tab);
    for (; end != tab && roomBetween(*tab, *end) < count * count; end = following(end))
        ++count;
    const std::uint64_t distance = roomBetween(*tab, *end) / count;
    std::uint64_t place = tab->place;
    for (Position moved = following(tab); moved != end; moved = following(moved), ++m_nSteps)
        moved->place = place += distance;
}

/// The head follows the last.
TabList::Position TabList::following(Position tab) {
    const Position next = std::next(tab);
    return next != m_Tabs.end() ? next : m_Tabs.begin();
}

bool TabList::isBefore(const Tab& one, const Tab& other) const {
    return one.place - m_Tabs.front().place < other.place - m_Tabs.front().place;
}

} // namespace sensorcontrol
