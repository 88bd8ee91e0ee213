#include "params/ParameterMap.h"

#include "host/text/ParameterText.h"

#include <algorithm>

namespace sensorcontrol {

namespace {

bool isBelow(const ParameterValue& entry, int id) { return entry.id < id; }

} // namespace

ParameterMap::const_iterator ParameterMap::find(int id) const {
    const auto found = std::lower_bound(m_Values.begin(), m_Values.end(), id, isBelow);
    return found != m_Values.end() && found->id == id ? found : m_Values.end();
}

ParameterMap::const_iterator ParameterMap::above(int id) const {
    return std::upper_bound(m_Values.begin(), m_Values.end(), id,
                            [](int wanted, const ParameterValue& entry) { return wanted < entry.id; });
}

void ParameterMap::set(int id, int value) {
    const std::size_t ordered = m_Values.size();
    m_Values.push_back({id, value});
    restoreOrder(ordered);
}

bool ParameterMap::add(const std::string& text) {
    const std::size_t ordered = m_Values.size();
    if (sensorhost::text::readGroups(text, [this](int id, int value) { m_Values.push_back({id, value}); })) {
        restoreOrder(ordered);
        return true;
    }
    m_Values.resize(ordered);
    return false;
}

void ParameterMap::print(std::string& text) const {
    text.clear();
    for (const ParameterValue& entry : m_Values)
        sensorhost::text::appendGroup(entry.id, entry.value, text);
}

// Ascending ids, the usual case, cost one comparison each, and a few strays are inserted in place: neither takes
// memory. A text in wild order is sorted at once, so that a hostile one does not cost the square of its length.
void ParameterMap::restoreOrder(std::size_t ordered) {
    const auto begin = m_Values.begin();
    auto end = begin + static_cast<std::ptrdiff_t>(ordered);
    std::ptrdiff_t movesLeft = 100'000;
    for (auto added = end; added != m_Values.end(); ++added) {
        const ParameterValue entry = *added;
        if (end == begin || (end - 1)->id < entry.id) {
            *end++ = entry;
            continue;
        }
        const auto place = std::lower_bound(begin, end, entry.id, isBelow);
        if (place->id == entry.id) {
            place->value = entry.value;
            continue;
        }
        movesLeft -= end - place;
        if (movesLeft < 0) {
            end = end != added ? std::move(added, m_Values.end(), end) : m_Values.end();
            std::stable_sort(begin, end, [](const ParameterValue& a, const ParameterValue& b) { return a.id < b.id; });
            auto last = begin;
            for (auto next = begin + 1; next != end; ++next) {
                if (next->id != last->id)
                    ++last;
                *last = *next;
            }
            end = last + 1;
            break;
        }
        std::move_backward(place, end, end + 1);
        *place = entry;
        ++end;
    }
    m_Values.erase(end, m_Values.end());
}

} // namespace sensorcontrol
