#pragma once

#include "host/Export.h"

#include <set>

/// The catalogue of the parameter ids that one controller knows, by kind. Filled in constructors, read by any thread
/// afterwards.
class SENSORCONTROL_API IdManager {
public:
    /// What is remembered, read from the module and saved of a parameter.
    enum Kind {
        Unknown = 0,
        Common = 1,      ///< remembered, read, saved in the scheme's file
        Especial = 2,    ///< outlives a reset to factory values; has a file of its own
        SetOnly = 3,     ///< a command with a value but no state: never remembered
        KeepDefault = 4, ///< the first value stays the remembered one; never saved
    };

    /// Registers the ids from first to last, both included. Does nothing if first is above last or the kind is not
    /// one of the four.
    void addParameterId(int kind, int firstId, int lastId);
    void addParameterId(int kind, int id);

    /// The kind of an id, Unknown if it is in no set. Of an id in several sets: KeepDefault, Common, Especial, SetOnly,
    /// whichever comes first.
    int getIdType(int id) const;

    /// 1 if the set holds the id, else 0.
    static int isIdExistInSet(int id, const std::set<int>& ids);
    /// 1 if any set holds the id, else 0.
    int isIdExist(int id) const;

    /// These replace what the argument held and return 1, also for an empty set.
    int getCommonIdList(std::set<int>& ids) const;
    int getEspecialIdList(std::set<int>& ids) const;
    int getSetOnlyIdList(std::set<int>& ids) const;
    int getKeepDefaultValueList(std::set<int>& ids) const;

private:
    std::set<int> m_CommonIds;
    std::set<int> m_EspecialIds;
    std::set<int> m_SetOnlyIds;
    std::set<int> m_KeepDefaultIds;
};
