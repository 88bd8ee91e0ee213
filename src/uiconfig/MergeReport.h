#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sensorcontrol {

/// What a style merge did, block by block. Keys are absent where an element has no attribute.
struct MergeReport {
    /// How far a document could be used.
    enum class Reading {
        NotRead, ///< it cannot be opened or read
        Refused, ///< beyond a limit
        Broken,  ///< no sound XML: the merge went by what stands before the fault
        Whole
    };
    struct Document {
        std::string path;
        Reading reading = Reading::NotRead;
    };

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

    /// Undecided ends the merge: the module's detail cannot be parsed.
    enum class Verdict { Applies, DoesNotApply, Undecided };
    struct Block {
        std::string name; ///< of the element
        Verdict verdict = Verdict::DoesNotApply;
        std::vector<Condition> conditions = {};
        std::vector<Edit> edits = {};
    };

    std::vector<Document> documents; ///< base style and variations, up to one that was not read
    std::vector<Block> blocks;       ///< in document order, up to the one that ended the merge
    long steps = 0;                  ///< of the look-ups and edits: in step with the tabs and edits that there are
};

} // namespace sensorcontrol
