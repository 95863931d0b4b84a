#pragma once

#include "base/ServiceOverride.h"

/// How long the end of the program waits for the rips and lookups under way, all
/// together, of the 5 s within which it has to be over.
inline constexpr int endPatienceMilliseconds = 4000;

/// Ends the process at once, past all destructors: the way out when a rip or a
/// lookup cannot be asked to stop.
class AbruptEnd {
public:
    virtual ~AbruptEnd() = default;
    /// As a success: the user closed the window, and it closes. Does not return,
    /// other than from a stand-in that has seen to it that the work stops.
    virtual void endProcess();
};

/// Puts another end in place for its lifetime.
using AbruptEndOverride = ServiceOverride<AbruptEnd>;

/// The end in use.
AbruptEnd& abruptEnd();
