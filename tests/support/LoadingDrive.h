#pragma once

#include "support/DriveShim.h"
#include "support/SimulatedDrive.h"

#include <cerrno>

/// A simulated drive that is still looking at its disc: until the virtual clock
/// has come so far it says that it is becoming ready, and does nothing else.
class LoadingDrive : public DriveShim {
public:
    explicit LoadingDrive(SimulatedDrive& below) : DriveShim(below)
    {
        const auto refuseUntilReady = [this](DriveReply& reply) {
            if (nowNanoseconds() < readyAt)
                reply = {false, EBUSY, 0, failure};
        };
        onVerify = refuseUntilReady;
        onToc = [refuseUntilReady](std::span<quint8, 804>, DriveReply& reply) { refuseUntilReady(reply); };
    }

    /// From now on.
    void load(double seconds) { readyAt = nowNanoseconds() + static_cast<qint64>(seconds * 1e9); }

    DriveFailure failure = DriveFailure::becomingReady; ///< what it says until then

private:
    qint64 readyAt = 0;
};
