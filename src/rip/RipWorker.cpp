#include "rip/RipWorker.h"

#include "base/FittingName.h"
#include "base/FreeSpace.h"
#include "base/Language.h"
#include "base/UniqueFolder.h"
#include "codecs/EncoderOptions.h"
#include "codecs/IAudioEncoder.h"
#include "disc/CdDrive.h"
#include "metadata/LoudnessMeter.h"
#include "metadata/tags/TagWriter.h"
#include "rip/OutputNaming.h"
#include "rip/ReadOffset.h"
#include "rip/RunGuard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace {

struct FormatOfRip {
    OutputFormat format;
    EncoderId encoder;
    const char* extension;
};

constexpr FormatOfRip formats[] = {
    {OutputFlac, FlacEncoderId, ".flac"}, {OutputWav, WavEncoderId, ".wav"},
    {OutputMp3, Mp3EncoderId, ".mp3"},    {OutputAac, AacEncoderId, ".m4a"},
    {OutputAlac, AlacEncoderId, ".m4a"},
};
constexpr const FormatOfRip& wavFormat = formats[1];

const FormatOfRip& formatOfRip(OutputFormat format)
{
    const auto* found = std::find_if(std::begin(formats), std::end(formats),
                                     [format](const auto& f) { return f.format == format; });
    return found == std::end(formats) ? wavFormat : *found;
}

// Tags that run out of room in the middle would cut the end off the audio, so
// they are only begun where they surely fit.
bool roomForTags(const QString& path, const QPixmap& cover)
{
    constexpr quint64 texts = 256 * 1024;
    const quint64 picture = quint64(cover.width()) * quint64(cover.height()) * 2;
    const std::optional<quint64> room = freeSpaceBytes(QFileInfo(path).absolutePath());
    return !room || *room > texts + picture;
}

} // namespace

RipWorker::RipWorker(QObject* parent) : QObject(parent)
{
    qRegisterMetaType<SectorResult>();
    qRegisterMetaType<RipResult>();
    qRegisterMetaType<QList<TrackInfo>>();
}

RipWorker::~RipWorker()
{
    runOver.load(std::memory_order_acquire);
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
    const std::lock_guard lock(fileLock);
    return fileInWork;
}

void RipWorker::setUnfinishedFile(const QString& path)
{
    const std::lock_guard lock(fileLock);
    fileInWork = path;
}

void RipWorker::run()
{
    if (order.sourceAudioFile.isEmpty()) {
        runDisc();
    } else {
        QDir().mkpath(order.outputFolder);
        runFileMode();
        finishReplayGain(false);
    }
    Q_EMIT finished();
    runOver.store(true, std::memory_order_release);
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
        runCueMode();
    } else {
        fetchMetadata();
        runCdMode();
    }
    spareSamples = {};
    finishReplayGain(true);
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
    const auto isAudio = [](const TrackInfo& track) { return !track.isData; };
    const auto total =
        static_cast<int>(std::count_if(order.disc.tracks.cbegin(), order.disc.tracks.cend(), isAudio));
    int place = 0;
    for (const TrackInfo& track : std::as_const(order.disc.tracks)) {
        ++place;
        if (track.isData)
            continue;
        Q_EMIT trackStarted(place, total, trackName(track));
        Q_EMIT trackDone(failedTrack(track.number, trackName(track)));
    }
}

void RipWorker::saveCover() const
{
    constexpr int coverQuality = 90;
    const QString path = order.outputFolder + QLatin1String(coverFileName);
    if (!order.cover.save(path, "JPEG", coverQuality))
        QFile::remove(path); // empty, or not whole
}

// What an exception leaves on this thread's slot ends the program.
bool RipWorker::withinMemory(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        spareSamples = {};
        const QString begun = unfinishedFile();
        if (!begun.isEmpty())
            QFile::remove(begun);
        setUnfinishedFile(QString());
        return false;
    }
}

bool RipWorker::encodeTrack(QList<int>&& pcm, const AudioFormat& format, const QString& basePath,
                            const QString& title, int trackNumber, int totalTracks, const QPixmap& trackCover)
{
    const quint64 frames = static_cast<quint64>(pcm.size()) / std::max<quint64>(format.channels, 1);
    const QString path = fittingPath(basePath, QLatin1String(formatOfRip(order.outputFormat).extension));
    AudioBlock block{std::move(pcm), frames};
    const bool whole = writeAudio(block, format, path);
    if (whole) {
        if (encoderOptions.replayGainEnabled)
            measureGain(block, format, path);
        tagTrack(path, title, trackNumber, totalTracks, trackCover);
    }
    spareSamples = std::move(block.samples);
    setUnfinishedFile(QString());
    return whole;
}

void RipWorker::measureGain(const AudioBlock& block, const AudioFormat& format, const QString& path)
{
    LoudnessMeter meter(format.sampleRate, format.channels);
    meter.add(block.samples.constData(), block.frames);
    meter.finish();
    gainEntries.append({path, replayGainFor(meter.gatedLoudness()), meter.peak, meter.gated});
}

void RipWorker::finishReplayGain(bool asAlbum)
{
    const QList<ReplayGainTrack> tracks = std::exchange(gainEntries, {});
    if (stopping)
        return;
    if (asAlbum) {
        writeAlbumReplayGain(tracks);
        return;
    }
    for (const ReplayGainTrack& track : tracks)
        writeReplayGain(track.path, track.gain, track.peak, std::numeric_limits<double>::quiet_NaN(), 0.0);
}

void RipWorker::tagTrack(const QString& path, const QString& title, int trackNumber, int totalTracks,
                         const QPixmap& trackCover)
{
    const auto note = [this, &path](const char* japanese, const char* english) {
        Q_EMIT logLine(pickLang(japanese, english) + QFileInfo(path).fileName());
    };
    TagData tags;
    tags.title = title;
    tags.artist = order.artist;
    tags.album = order.album;
    tags.year = order.year;
    tags.trackNumber = trackNumber;
    tags.trackTotal = totalTracks;
    tags.discNumber = order.discNumber;
    tags.discTotal = order.discTotal;
    tags.cover = trackCover;
    bool coverLeftOut = false;
    if (!roomForTags(path, trackCover) || !writeTags(path, tags, &coverLeftOut))
        note("  ⚠ タグを書き込めませんでした: ", "  ⚠ The tags could not be written: ");
    else if (coverLeftOut)
        note("  ⚠ カバー画像が大きすぎるため埋め込めませんでした: ",
             "  ⚠ The cover is too large to be embedded: ");
}

bool RipWorker::writeAudio(const AudioBlock& block, const AudioFormat& format, const QString& path)
{
    const auto encoder = makeEncoder(formatOfRip(order.outputFormat).encoder);
    const bool opened = encoder->open(QFile::encodeName(path).toStdString(), format);
    if (opened)
        setUnfinishedFile(path);
    const bool written = opened && encoder->write(block);
    const bool closed = encoder->close();
    const bool whole = written && closed;
    // What a failed encoder leaves behind would pass for a track.
    if (opened && !whole && QFileInfo(path).isFile())
        QFile::remove(path);
    return whole;
}
