#pragma once

#include "base/ServiceOverride.h"

#include <memory>

/// What a disc run needs of the platform while it lasts: raised priority of the
/// process and the running thread, a fine timer, and no system sleep. Each part
/// may be refused by the system; a run goes on all the same.
class RunGuard {
public:
    virtual ~RunGuard() = default;
    virtual void begin() = 0;
    virtual void end() = 0; ///< takes all of it back
};

/// The guard in use; the machine's own unless a test has put another there.
RunGuard& runGuard();

/// Puts another guard in place for its lifetime; before any run starts.
using RunGuardOverride = ServiceOverride<RunGuard>;

/// The guard of the machine this was built for.
std::unique_ptr<RunGuard> makeRunGuard();
