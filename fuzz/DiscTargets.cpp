#include "fuzz/DiscTargets.h"

#include "base/FilePath.h"
#include "disc/CueDisc.h"
#include "disc/CueSheet.h"
#include "disc/DriveModel.h"
#include "disc/SenseData.h"
#include "disc/StorageDescriptor.h"
#include "disc/TocTable.h"
#include "fuzz/Promise.h"
#include "fuzz/ScratchFile.h"

#include <algorithm>

using fuzz::require;

namespace {

constexpr int mostTracks = 99;

std::span<const quint8> spanOf(const char* bytes, size_t size)
{
    return {reinterpret_cast<const quint8*>(bytes), size};
}

/// A drive that answers each command with the same bytes.
class ParrotDrive : public DriveDevice {
public:
    explicit ParrotDrive(std::span<const quint8> says) : answer(says) {}

    DriveReply checkVerify() override { return {}; }
    DriveReply readToc(std::span<quint8, 804>) override { return {}; }
    DriveReply readRaw(quint32, quint32, std::span<quint8>, bool) override { return {}; }
    DriveReply passThrough(std::span<const quint8>, std::span<quint8> data) override
    {
        const size_t length = std::min(answer.size(), data.size());
        std::copy_n(answer.begin(), length, data.begin());
        return {true, 0, length};
    }
    std::optional<DriveDescriptor> descriptor() override { return decodeStorageDescriptor(answer); }

private:
    std::span<const quint8> answer;
};

void requireOrder(const DiscToc& disc)
{
    for (const TrackInfo& track : disc.tracks) {
        const bool seconds = track.seconds == trackSeconds(track.startLba, track.endLba);
        require(seconds, "a track lasts as long as its sectors");
    }
}

} // namespace

void fuzz::cueSheet(const char* bytes, size_t size)
{
    const QString text = decodeCueText(QByteArray(bytes, static_cast<qsizetype>(size)));
    const CueSheet sheet = scanCueSheet(text, QStringLiteral("/nowhere"));
    for (const CueEntry& entry : sheet.entries)
        require(entry.file.isEmpty() || entry.file.startsWith(u'/'), "a file's path is absolute");
}

void fuzz::waveImage(const char* bytes, size_t size)
{
    static const ScratchFile image(".wav");
    static const ScratchFile sheet(".cue");
    static const bool written = [] {
        sheet.write("FILE \"" + fromPath(image.path).toUtf8()
                    + "\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
                      "  TRACK 02 AUDIO\n    INDEX 01 00:00:01\n");
        return true;
    }();
    (void)written;
    image.write(QByteArray(bytes, static_cast<qsizetype>(size)));
    const DiscToc disc = readCueDisc(fromPath(sheet.path));
    require(disc.imageDataOffset <= size, "the samples begin within the file");
    require(disc.totalSectors <= size / RAW_SECTOR_BYTES + 1, "no sector is made up");
    requireOrder(disc);
}

void fuzz::discTable(const char* bytes, size_t size)
{
    TocTable table{};
    std::copy_n(bytes, std::min(size, table.size()), table.begin());
    if (!plausibleToc(table))
        return;
    const DiscToc disc = discFromToc(table);
    require(!disc.tracks.isEmpty() && disc.tracks.size() <= mostTracks, "a table has 1 to 99 tracks");
    requireOrder(disc);
}

void fuzz::driveAnswers(const char* bytes, size_t size)
{
    const auto answer = spanOf(bytes, size);
    if (const auto sense = decodeSense(answer)) {
        require(sense->key >= 0 && sense->key <= 0xF, "a sense key has four bits");
        (void)failureOfSense(*sense);
    }
    ParrotDrive drive(answer);
    const QString model = driveModelText(drive);
    require(model == model.trimmed(), "a model's name is trimmed");
}
