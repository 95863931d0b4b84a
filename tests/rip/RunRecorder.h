#pragma once

#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/DiscMaker.h"

#include <QTemporaryDir>

/// Runs a worker over a CUE image on the calling thread and keeps what it says.
class RunRecorder {
public:
    RunRecorder()
    {
        QObject::connect(&worker, &RipWorker::sectorDone, [this](const SectorResult& r) { sectors.append(r); });
        QObject::connect(&worker, &RipWorker::trackStarted, [this](int number, int total, const QString& title) {
            started.append(QStringLiteral("%1/%2 %3").arg(number).arg(total).arg(title));
        });
        QObject::connect(&worker, &RipWorker::trackDone, [this](const RipResult& r) { results.append(r); });
        QObject::connect(&worker, &RipWorker::error, [this](const QString& text) { errors.append(text); });
        QObject::connect(&worker, &RipWorker::finished, [this] { ++finishedCount; });
    }

    /// Opens the image and rips it into `folder`.
    void rip(const QString& cue, OutputFormat format, const QString& folder, const QPixmap& cover = {})
    {
        ASSERT_TRUE(drive.openCue(cue));
        worker.configure(&drive, drive.readToc(), folder, QStringLiteral("Test Artist"), QStringLiteral("Test Album"),
                         QStringLiteral("1998-03-01"), cover, QString(), 1, 2, 300, format, QString(), 20);
        worker.run();
    }

    CdDrive drive;
    RipWorker worker;
    QList<SectorResult> sectors;
    QStringList started;
    QList<RipResult> results;
    QStringList errors;
    int finishedCount = 0;
};

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
