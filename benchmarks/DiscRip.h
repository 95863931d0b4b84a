#pragma once

#include "rip/RipTypes.h"
#include "support/SimulatedDrive.h"

#include <QString>
#include <QtGlobal>

/// What a rip of a simulated disc through the real worker came to.
struct DiscRipOutcome {
    // Sectors of the files that are not what the disc holds, by what was
    // reported of the reads that their wrong samples come from.
    int wrong = 0;
    int wrongGood = 0;        ///< reported good
    int wrongRecovered = 0;   ///< reported recovered
    int wrongBorrowed = 0;    ///< moved in from the next track by the offset; never judged
    int wrongUnconfirmed = 0; ///< reported as errors
    int falselyBad = 0;       ///< sectors reported as errors whose samples are right
    int recoveredRight = 0;   ///< sectors reported recovered whose samples are right

    quint64 commands = 0;
    quint64 sectors = 0;     ///< transferred
    double driveSeconds = 0; ///< virtual
    double processorSeconds = 0;
    bool c2Mode = false;
    bool filesWhole = true;

    DiscRipOutcome& operator+=(const DiscRipOutcome& other);
};

struct DiscRipOptions {
    QString folder; ///< the files go there and stay there
    int maxRereads = 20;
    bool judge = true; ///< compare the files with the disc
};

/// Rips the disc in the drive to WAV files, with the drive's own offset as the
/// correction, and compares them with what the disc holds.
DiscRipOutcome ripSimulatedDisc(SimulatedDrive& drive, const DiscRipOptions& options);
