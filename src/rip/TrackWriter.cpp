#include "rip/TrackWriter.h"

#include "base/FilePath.h"
#include "base/FittingName.h"
#include "base/FreeSpace.h"
#include "base/Language.h"
#include "codecs/EncoderOptions.h"
#include "codecs/IAudioEncoder.h"
#include "metadata/LoudnessMeter.h"
#include "metadata/tags/TagWriter.h"
#include "rip/OutputNaming.h"
#include "rip/RipOrder.h"
#include "rip/RunReport.h"

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

void TrackWriter::saveCover() const
{
    constexpr int coverQuality = 90;
    const QString path = order.outputFolder + QLatin1String(coverFileName);
    if (!order.cover.save(path, "JPEG", coverQuality))
        QFile::remove(path); // empty, or not whole
}

// What an exception leaves on this thread's slot ends the program.
bool TrackWriter::withinMemory(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        samples = {};
        const QString begun = unfinishedFile();
        if (!begun.isEmpty())
            QFile::remove(begun);
        setUnfinishedFile(QString());
        return false;
    }
}

QList<int> TrackWriter::takeSpareSamples()
{
    return std::exchange(samples, {});
}

bool TrackWriter::write(QList<int>&& pcm, const AudioFormat& format, const TrackLabel& label)
{
    const quint64 frames = static_cast<quint64>(pcm.size()) / std::max<quint64>(format.channels, 1);
    const QString path =
        fittingPath(label.basePath, QLatin1String(formatOfRip(order.outputFormat).extension));
    AudioBlock block{std::move(pcm), frames};
    const bool whole = encode(block, format, path);
    if (whole) {
        if (encoderOptions.replayGainEnabled)
            measureGain(block, format, path);
        tag(path, label);
    }
    samples = std::move(block.samples);
    setUnfinishedFile(QString());
    return whole;
}

void TrackWriter::measureGain(const AudioBlock& block, const AudioFormat& format, const QString& path)
{
    LoudnessMeter meter(format.sampleRate, format.channels);
    meter.add(block.samples.constData(), block.frames);
    meter.finish();
    gainEntries.append({path, replayGainFor(meter.gatedLoudness()), meter.peak, meter.gated});
}

void TrackWriter::finish(GainOf scope)
{
    samples = {};
    const QList<ReplayGainTrack> tracks = std::exchange(gainEntries, {});
    if (report.stopRequested())
        return;
    if (scope == GainOf::album) {
        writeAlbumReplayGain(tracks);
        return;
    }
    for (const ReplayGainTrack& track : tracks)
        writeReplayGain(track.path, track.gain, track.peak, std::numeric_limits<double>::quiet_NaN(), 0.0);
}

void TrackWriter::tag(const QString& path, const TrackLabel& label)
{
    const auto note = [this, &path](const char* japanese, const char* english) {
        report.log(pickLang(japanese, english) + QFileInfo(path).fileName());
    };
    TagData tags;
    tags.title = label.title;
    tags.artist = order.artist;
    tags.album = order.album;
    tags.year = order.year;
    tags.trackNumber = label.number;
    tags.trackTotal = label.total;
    tags.discNumber = order.discNumber;
    tags.discTotal = order.discTotal;
    tags.cover = label.cover;
    bool coverLeftOut = false;
    if (!roomForTags(path, label.cover) || !writeTags(path, tags, &coverLeftOut))
        note("  ⚠ タグを書き込めませんでした: ", "  ⚠ The tags could not be written: ");
    else if (coverLeftOut)
        note("  ⚠ カバー画像が大きすぎるため埋め込めませんでした: ",
             "  ⚠ The cover is too large to be embedded: ");
}

bool TrackWriter::encode(const AudioBlock& block, const AudioFormat& format, const QString& path)
{
    const auto encoder = makeEncoder(formatOfRip(order.outputFormat).encoder);
    const bool opened = encoder->open(toPath(path), format);
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

QString TrackWriter::unfinishedFile() const
{
    const std::lock_guard lock(fileLock);
    return fileInWork;
}

void TrackWriter::setUnfinishedFile(const QString& path)
{
    const std::lock_guard lock(fileLock);
    fileInWork = path;
}
