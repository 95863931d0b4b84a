#pragma once

#include "RecordingReport.h"
#include "disc/CdDrive.h"
#include "rip/TrackWriter.h"

/// What a run is made of where there is no worker.
struct RunParts {
    RunParts()
    {
        order.artist = QStringLiteral("Test Artist");
        order.album = QStringLiteral("Test Album");
        order.year = QStringLiteral("1998-03-01");
        order.discNumber = 1;
        order.discTotal = 2;
        order.outputFormat = OutputWav;
    }

    /// Takes the disc in the drive of the platform in force.
    [[nodiscard]] bool loadDisc() { return drive.open(CdDrive::enumerateDrives().constFirst()) && load(); }
    [[nodiscard]] bool loadImage(const QString& cue) { return drive.openCue(cue) && load(); }

    CdDrive drive;
    RipOrder order;
    RecordingReport report;
    TrackWriter writer{order, report};

private:
    bool load()
    {
        order.drive = &drive;
        order.disc = drive.readToc();
        return !order.disc.tracks.isEmpty();
    }
};
