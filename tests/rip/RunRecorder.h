#pragma once

#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/DiscMaker.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

/// Runs a worker over an image or a disc on the calling thread and keeps what it
/// says.
class RunRecorder {
public:
    RunRecorder()
    {
        QObject::connect(&worker, &RipWorker::sectorDone,
                         [this](const SectorResult& r) { sectors.append(r); });
        QObject::connect(&worker, &RipWorker::trackStarted,
                         [this](int number, int total, const QString& title) {
                             started.append(QStringLiteral("%1/%2 %3").arg(number).arg(total).arg(title));
                         });
        QObject::connect(&worker, &RipWorker::trackDone, [this](const RipResult& r) { results.append(r); });
        QObject::connect(&worker, &RipWorker::error, [this](const QString& text) { errors.append(text); });
        QObject::connect(&worker, &RipWorker::logLine,
                         [this](const QString& line) { logLines.append(line); });
        QObject::connect(&worker, &RipWorker::statusText,
                         [this](const QString& text) { statusTexts.append(text); });
        QObject::connect(&worker, &RipWorker::finished, [this] { ++finishedCount; });
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
    QList<SectorResult> sectors;
    QStringList started;
    QList<RipResult> results;
    QStringList errors;
    QStringList logLines;
    QStringList statusTexts;
    int finishedCount = 0;
};

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The audio bytes of a WAV file of ours, tags behind them left out.
inline QByteArray audioOfWave(const QString& path)
{
    constexpr qsizetype headerBytes = 44;
    const QByteArray file = contentOf(path);
    return file.size() < headerBytes
               ? QByteArray()
               : file.mid(headerBytes, qFromLittleEndian<quint32>(file.constData() + headerBytes - 4));
}

/// Holds a result's checksums against sums over the audio bytes of its file,
/// written out frame by frame; positions count from 1.
inline void expectChecksums(const RipResult& result, const QByteArray& audio, qsizetype firstPosition,
                            qsizetype lastPosition)
{
    quint32 v1 = 0;
    quint32 v2 = 0;
    for (qsizetype position = firstPosition; position <= lastPosition; ++position) {
        const quint64 product = quint64{qFromLittleEndian<quint32>(audio.constData() + (position - 1) * 4)}
                                * static_cast<quint64>(position);
        v1 += static_cast<quint32>(product);
        v2 += static_cast<quint32>(product) + static_cast<quint32>(product >> 32);
    }
    EXPECT_EQ(result.crcV1, v1) << "track " << result.trackNumber;
    EXPECT_EQ(result.crcV2, v2) << "track " << result.trackNumber;
}
