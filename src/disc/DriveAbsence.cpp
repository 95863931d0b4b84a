#include "disc/DriveAbsence.h"

#include "disc/DrivePlatform.h"

namespace {

constexpr qint64 patience = 30'000'000'000; // ns

} // namespace

void DriveAbsence::note(bool delivered, DriveFailure failure)
{
    if (delivered || failure != DriveFailure::notReady)
        since.reset();
    else if (!since)
        since = drivePlatform().nowNanoseconds();
}

bool DriveAbsence::isLasting() const
{
    return since && drivePlatform().nowNanoseconds() - *since >= patience;
}
