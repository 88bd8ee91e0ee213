#pragma once

#include "Parameters.h"
#include "TimeOfDay.h"
#include "controller/ISensorController.h"

#include <map>
#include <string>
#include <vector>

namespace sensorctl {

/// A host's work on the parameter schemes of a controller that is up. Operations throw Failure with what the library
/// refused; those that change a scheme save it.
class SchemeDesk {
public:
    /// Both outlive it.
    SchemeDesk(ISensorController& controller, const Parameters& parameters);

    struct Scheme {
        int index;
        std::string path;
        bool isReadable; ///< its file holds parameters; otherwise nothing below is known
        bool isEnabled;
        int from; ///< minutes of the day
        int to;
        bool isInForce;
        bool isDue; ///< the clock selects it now
    };

    /// Those in the list, with the span in memory for the one in force and the saved one for all others.
    std::vector<Scheme> list() const;
    int count() const { return m_nCount; }
    /// -1 without schemes.
    int inForce() const;
    bool isAutomatic() const;

    void setAutomatic(bool isAutomatic);
    /// Puts a scheme in force; values of the old one that were not saved are lost, as with every switch.
    void choose(int scheme);
    void setSpan(int scheme, const DaySpan& span);
    void setEnabled(int scheme, bool isEnabled);
    /// The values of one scheme for another, which keeps its own span and flag.
    void copy(int from, int to);

    /// The library starts with the values that the clock selects, whatever was chosen. This puts the saved choice back
    /// in force where the clock does not take over: a choice by hand, or no span that is open. Gives its number, or -1
    /// if there was nothing to do. Blocks until the background thread has switched where it has to.
    int settle();

    /// Throws Failure if values of the scheme in force are not in its file.
    void checkSaved() const;

private:
    /// The values of a scheme's file. Throws Failure if it holds none.
    std::map<int, int> saved(int scheme) const;
    void checkIndex(int scheme) const;
    /// Puts the scheme in force, applies the text, saves, and puts back what was.
    void edit(int scheme, const std::string& what, const std::string& text, bool isSpan);

    ISensorController& m_Controller;
    const Parameters& m_Parameters;
    int m_nCount = 0;
};

} // namespace sensorctl
