#include "rip/RunGuard.h"

namespace {

RunGuard* replacementGuard = nullptr;

} // namespace

RunGuard& runGuard()
{
    static const std::unique_ptr<RunGuard> own = makeRunGuard();
    return replacementGuard ? *replacementGuard : *own;
}

RunGuardOverride::RunGuardOverride(RunGuard& replacement) : previous(replacementGuard)
{
    replacementGuard = &replacement;
}

RunGuardOverride::~RunGuardOverride()
{
    replacementGuard = previous;
}
