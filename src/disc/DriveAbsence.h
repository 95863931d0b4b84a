#pragma once

#include "disc/DriveDevice.h"

#include <optional>

/// Whether a drive has been unplugged or emptied. One can lose sight of its disc over
/// a bad place and find it again, so that takes a while in which it said nothing else.
class DriveAbsence {
public:
    /// The answer to one attempt at some sectors.
    void note(bool delivered, DriveFailure failure);
    bool isLasting() const;

private:
    std::optional<qint64> since;
};
