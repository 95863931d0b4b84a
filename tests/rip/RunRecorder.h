#pragma once

#include "RecordingReport.h"
#include "TrackFiles.h"
#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/DiscMaker.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// Runs a worker over an image or a disc on the calling thread and keeps what it
/// says.
class RunRecorder : public RecordingReport {
public:
    RunRecorder()
    {
        QObject::connect(&worker, &RipWorker::sectorDone, [this](const SectorResult& r) { sector(r); });
        QObject::connect(
            &worker, &RipWorker::trackStarted,
            [this](int number, int total, const QString& title) { trackBegins(number, total, title); });
        QObject::connect(&worker, &RipWorker::trackDone, [this](const RipResult& r) { trackEnds(r); });
        QObject::connect(&worker, &RipWorker::metadataReady,
                         [this](const QString& artist, const QString& album, const QString& year,
                                const QPixmap& cover, const QList<TrackInfo>& tracks) {
                             RipOrder filled;
                             filled.artist = artist;
                             filled.album = album;
                             filled.year = year;
                             filled.cover = cover;
                             filled.disc.tracks = tracks;
                             metadata(filled);
                         });
        QObject::connect(&worker, &RipWorker::error, [this](const QString& text) { failure(text); });
        QObject::connect(&worker, &RipWorker::logLine, [this](const QString& line) { log(line); });
        QObject::connect(&worker, &RipWorker::statusText, [this](const QString& text) { status(text); });
        QObject::connect(&worker, &RipWorker::finished, [this] {
            ++finishedCount;
            said.append(QStringLiteral("finished"));
        });
    }

    /// Opens the image and rips it into `folder`.
    void rip(const QString& cue, OutputFormat format, const QString& folder, const QPixmap& cover = {})
    {
        ASSERT_TRUE(drive.openCue(cue));
        worker.configure(&drive, drive.readToc(), folder, QStringLiteral("Test Artist"),
                         QStringLiteral("Test Album"), QStringLiteral("1998-03-01"), cover, QString(), 1, 2,
                         300, format, QString(), 20);
        worker.run();
    }

    /// Rips the disc in the drive of the platform in force into `folder`.
    void ripDisc(const QString& folder, int rereads = 20, OutputFormat format = OutputWav)
    {
        ASSERT_TRUE(drive.open(CdDrive::enumerateDrives().constFirst()));
        disc = drive.readToc();
        worker.configure(&drive, disc, folder, QStringLiteral("Test Artist"), QStringLiteral("Test Album"),
                         QStringLiteral("1998"), QPixmap(), QString(), 1, 1, 300, format, QString(), rereads);
        worker.run();
    }

    CdDrive drive;
    DiscToc disc;
    RipWorker worker;
    int finishedCount = 0;
};
