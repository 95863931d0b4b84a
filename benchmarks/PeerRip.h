#pragma once

#include "DiscRip.h"
#include "playeddrive/DriveDescription.h"

#include <QString>

/// Rips a described disc with cdparanoia, the whole disc with its own defaults, through
/// the played drive, and compares its files with what the disc holds. The read offset
/// is applied to what comes out, as it would be to any files, so that a drive's offset
/// does not count against it.
///
/// What it reports about a place decides under which word a wrong sector counts: a skip
/// is an error, any other trouble is a recovery. docs/accuracy.md tells how.
class PeerRip {
public:
    /// @param played  the library that plays the drive
    /// @param limit   seconds of real time that a rip may take
    PeerRip(QString played, int limit) : library(std::move(played)), patience(limit) {}

    struct Outcome : DiscRipOutcome {
        bool gaveUp = false; ///< stopped at the limit; the rest counts the drive's work so far alone
    };

    /// Throws std::runtime_error where cdparanoia cannot be started.
    Outcome rip(const DriveDescription& description) const;

private:
    QString library;
    int patience;
};
