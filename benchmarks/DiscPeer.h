#pragma once

#include <QString>

/// The rip of a sound disc of music beside cdparanoia, an independent ripper: each a whole
/// process, over the same simulated drive, whose time is virtual and costs nothing.
struct DiscPeer {
    QString library; ///< plays the drive to cdparanoia
    int minutes = 10;
    int tracks = 4;
    int pairs = 5;

    /// Prints a row with C2 and one without.
    /// Throws std::runtime_error where a process fails.
    void printRows(const QString& folder) const;
};

/// What a fresh process does for one run: rips the disc that the environment describes.
/// @return the exit code
int ripDescribedDisc(int argc, char** argv, const QString& folder);
/// Its first argument; the folder comes after it.
inline constexpr char ripDescribedCommand[] = "run-rip";
