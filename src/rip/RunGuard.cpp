#include "rip/RunGuard.h"

RunGuard& runGuard()
{
    static const std::unique_ptr<RunGuard> own = makeRunGuard();
    return RunGuardOverride::orElse(*own);
}
