#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sensorcontrol {

/// What a style merge did, block by block. Keys are absent where an element has no attribute.
struct MergeReport {
    /// A condition that was looked at: those behind the first one that does not hold are not.
    struct Condition {
        std::string key;
        std::string accepted;                            ///< the values, separated by commas
        std::optional<std::string> found = std::nullopt; ///< the module's value, if its detail has the key
        bool holds = false;
    };

    enum class EditKind { Delete, AddAfter, AddBefore };
    struct Edit {
        EditKind kind = EditKind::Delete;
        std::optional<int> key = std::nullopt;    ///< of the tabs deleted, or of the new tab
        std::optional<int> anchor = std::nullopt; ///< of the tab beside which the new one was put
        int tabs = 0;                             ///< deleted or added
        bool isDone = false; ///< false for the edit that ended the merge: no tab has the anchor's key
    };

    struct Block {
        std::string name; ///< of the element
        bool applies = false;
        std::vector<Condition> conditions = {};
        std::vector<Edit> edits = {};
    };

    std::vector<Block> blocks; ///< in document order, up to the one that ended the merge
};

} // namespace sensorcontrol
