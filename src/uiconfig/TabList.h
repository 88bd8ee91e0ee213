#pragma once

#include "host/xml/TinyXml.h"

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <vector>

namespace sensorcontrol {

/// The first attribute's value, whatever its name, read as a leading decimal number, 0 if there is none. Nothing for an
/// element without attributes.
std::optional<int> keyOf(const TiXmlElement& element);

/// The tabs of a style, which are the child elements of its root, with an index of their keys. Looking up, adding and
/// removing cost the same however many tabs there are, but for a logarithm. For one thread.
class TabList {
public:
    struct Tab {
        TiXmlElement* element; ///< the root's
        std::optional<int> key;
        std::uint64_t place; ///< grows from tab to tab, counted from the list's head and modulo 2^64
    };
    using Position = std::list<Tab>::iterator;

    /// `root` may be null, which has no tabs, and has to outlive the list. Its child elements change through the list
    /// only.
    explicit TabList(TiXmlElement* root);

    /// The first tab with the key, in document order. Nothing has no key.
    std::optional<Position> find(std::optional<int> key);
    /// Puts a copy of the element behind, or before, a tab of this list.
    Position addAfter(Position tab, const TiXmlElement& element);
    Position addBefore(Position tab, const TiXmlElement& element);
    /// Removes every tab with the key and tells how many there were.
    int remove(std::optional<int> key);

    /// What was done so far: tabs read, looked up, added, removed, and places given anew.
    long steps() const { return m_nSteps; }

private:
    Position enter(Position previous, TiXmlElement* element);
    void makeRoomBehind(Position tab);
    Position following(Position tab);
    bool isBefore(const Tab& one, const Tab& other) const;

    TiXmlElement* m_pRoot;
    std::list<Tab> m_Tabs;                        ///< in document order, behind a head that stands for no tab
    std::map<int, std::vector<Position>> m_ByKey; ///< never empty; the first in document order comes first
    long m_nSteps = 0;
};

} // namespace sensorcontrol
