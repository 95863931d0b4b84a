#include "rip/RipWorker.h"

#include "base/Language.h"
#include "base/UniqueFolder.h"
#include "disc/CdDrive.h"
#include "rip/AudioArea.h"
#include "rip/DiscRun.h"
#include "rip/FileRun.h"
#include "rip/ImageRun.h"
#include "rip/MetadataStep.h"
#include "rip/OutputNaming.h"
#include "rip/ReadOffset.h"
#include "rip/RunGuard.h"
#include "rip/TrackWriter.h"

#include <QDir>

#include <algorithm>
#include <utility>

RipWorker::RipWorker(QObject* parent) : QObject(parent), writer(new TrackWriter(order, *this))
{
    qRegisterMetaType<SectorResult>();
    qRegisterMetaType<RipResult>();
    qRegisterMetaType<QList<TrackInfo>>();
}

RipWorker::~RipWorker()
{
    runOver.take();
}

void RipWorker::configure(CdDrive* drive, const DiscToc& disc, const QString& outputFolder,
                          const QString& artist, const QString& album, const QString& year,
                          const QPixmap& cover, const QString& discogsToken, int discNumber, int discTotal,
                          int qualityValue, OutputFormat outputFormat, const QString& sourceAudioFile,
                          int maxRereads)
{
    order = {.drive = drive,
             .disc = disc,
             .outputFolder = outputFolder,
             .namingRule = order.namingRule,
             .artist = artist,
             .album = album,
             .year = year,
             .cover = cover,
             .discogsToken = discogsToken,
             .discNumber = discNumber,
             .discTotal = discTotal,
             .qualityValue = qualityValue,
             .outputFormat = outputFormat,
             .sourceAudioFile = sourceAudioFile,
             .rereadLimit = std::max(maxRereads, 1)};
}

void RipWorker::setNamingRule(const QString& rule)
{
    order.namingRule = rule;
}

QString RipWorker::outputBasePath(int trackNumber, const QString& title) const
{
    return ::outputBasePath(order, trackNumber, title);
}

QString RipWorker::uniqueFolder(const QString& parent, const QString& name)
{
    return makeUniqueFolder(parent, name).path;
}

void RipWorker::applyReadOffset(QList<int>& pcm, quint32 firstLba, quint32 lastLba)
{
    if (order.drive)
        ::applyReadOffset(*order.drive, {order.disc.tracks, lastAudioLba}, pcm, firstLba, lastLba);
}

QString RipWorker::unfinishedFile() const
{
    return writer->unfinishedFile();
}

void RipWorker::run()
{
    if (order.sourceAudioFile.isEmpty()) {
        runDisc();
    } else {
        QDir().mkpath(order.outputFolder);
        FileRun(order, *writer, *this).run();
        writer->finish(GainOf::eachFile);
    }
    Q_EMIT finished();
    runOver.give();
}

void RipWorker::runDisc()
{
    if (!order.drive || order.disc.tracks.isEmpty()) {
        heldDrive.reset();
        Q_EMIT error(QStringLiteral("No drive or tracks"));
        return;
    }
    if (!holdDrive()) {
        Q_EMIT error(
            pickLang("ドライブは別のリッピングで使用中です。", "The drive is in use by another rip."));
        return;
    }
    runGuard().begin();
    if (!QDir().mkpath(order.outputFolder)) {
        failAllTracks();
    } else if (order.disc.isImage) {
        ImageRun(order, *writer, *this).run();
    } else {
        runMetadataStep(order, *this);
        lastAudioLba = audioAreaOf(order.disc.tracks).lastLba;
        DiscRun(order, *writer, *this).run();
    }
    writer->finish(GainOf::album);
    runGuard().end();
    heldDrive.reset();
}

bool RipWorker::holdDrive()
{
    if (!heldDrive && order.drive->borrow())
        heldDrive.reset(order.drive);
    return heldDrive != nullptr;
}

void RipWorker::GiveBack::operator()(CdDrive* borrowed) const
{
    borrowed->giveBack();
}

void RipWorker::failAllTracks()
{
    const QString words =
        pickLang("出力フォルダを作成できません: ", "Cannot create the output folder: ") + order.outputFolder;
    Q_EMIT error(words);
    Q_EMIT logLine(QStringLiteral("  ⚠ ") + words);
    const int total = audioAreaOf(order.disc.tracks).trackCount;
    int place = 0;
    for (const TrackInfo& track : std::as_const(order.disc.tracks)) {
        ++place;
        if (track.isData)
            continue;
        Q_EMIT trackStarted(place, total, trackName(track));
        Q_EMIT trackDone(failedTrack(track.number, trackName(track)));
    }
}

void RipWorker::sector(const SectorResult& record)
{
    Q_EMIT sectorDone(record);
}

void RipWorker::trackBegins(int place, int totalTracks, const QString& title)
{
    Q_EMIT trackStarted(place, totalTracks, title);
}

void RipWorker::trackEnds(const RipResult& result)
{
    Q_EMIT trackDone(result);
}

void RipWorker::metadata(const RipOrder& filled)
{
    Q_EMIT metadataReady(filled.artist, filled.album, filled.year, filled.cover, filled.disc.tracks);
}

void RipWorker::failure(const QString& message)
{
    Q_EMIT error(message);
}

void RipWorker::log(const QString& line)
{
    Q_EMIT logLine(line);
}

void RipWorker::status(const QString& text)
{
    Q_EMIT statusText(text);
}
