#include "disc/ColdReads.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"
#include "disc/ReadCdCommand.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace {

constexpr int placesOfThreeSegments = 3;
constexpr int triesForAPlace = 3;
constexpr quint8 capabilitiesPage = 0x2A;
constexpr quint32 beyondBuffer = 400; // sectors

} // namespace

ColdReads::ColdReads(std::unique_ptr<DriveDevice> behind) : device(std::move(behind)) {}

DriveReply ColdReads::readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded)
{
    if (knownHoles.anyHole(lba, count)) {
        const bool seek = !guarded;
        count = seek && !knownHoles.isHole(lba) ? knownHoles.boundedBatch(lba, count) : 0;
        if (count == 0)
            return lastWord;
        data = data.first(size_t{count} * RAW_SECTOR_BYTES);
    }
    const DriveReply reply = device->readRaw(lba, count, data, guarded);
    learn(lba, count, reply, data.size());
    return reply;
}

DriveReply ColdReads::passThrough(std::span<const quint8> command, std::span<quint8> data)
{
    if (!isReadCd(command))
        return device->passThrough(command, data);
    const SectorRange sectors = sectorsOf(command);
    if (knownHoles.anyHole(sectors.first, sectors.count()))
        return lastWord;
    const DriveReply reply = device->passThrough(command, data);
    learn(sectors.first, sectors.count(), reply, data.size());
    return reply;
}

void ColdReads::learn(quint32 lba, quint32 count, const DriveReply& reply, size_t wanted)
{
    position = lba;
    if (reply.delivered(wanted)) {
        knownHoles.delivered(lba, count);
        highestRead = std::max(highestRead, lba + count);
    } else if (reply.failure == DriveFailure::unreadable || reply.failure == DriveFailure::timedOut) {
        inDoubt = true;
        knownHoles.failed(lba, count);
        lastWord = {false, reply.errorNumber, 0, reply.failure};
    }
}

void ColdReads::handedOut(quint32 lba)
{
    if (!handed.isEmpty() && handed.constLast().end == lba)
        ++handed.last().end;
    else
        handed.append({lba, lba + 1});
}

bool ColdReads::wasHandedOut(quint32 lba, quint32 count) const
{
    return std::any_of(handed.cbegin(), handed.cend(), [=](const SectorRange& range) {
        return range.first < lba + count && lba < range.end;
    });
}

bool ColdReads::makeCold(quint32 lba, quint32 count, Effort effort)
{
    const bool warm = wasHandedOut(lba, count);
    if (warm)
        goFar(lba, effort);
    return warm;
}

void ColdReads::makeAllCold(quint32 lba)
{
    if (!handed.isEmpty())
        goFar(lba, inDoubt ? Effort::Thorough : Effort::Once);
}

// A table of contents can tell of a lead-out far beyond the disc's end; what has been
// read before is there. With no place left, those that failed once get another chance.
void ColdReads::goFar(quint32 lba, Effort effort)
{
    int places = 1;
    if (effort == Effort::Thorough) {
        inDoubt = true;
        askForBuffer();
        places = placesOfThreeSegments;
    }
    const QList<quint32> from{lba, position};
    const SectorRange known{audioArea.first, highestRead};
    if (visitPlaces(audioArea, places, from) || visitPlaces(known, places, from))
        handed.clear();
    else
        unusable.clear();
}

/// Whether one of the places at least was reached.
bool ColdReads::visitPlaces(const SectorRange& area, int places, QList<quint32> from)
{
    bool wentThere = false;
    int attempts = area.isEmpty() ? 0 : places * triesForAPlace;
    for (quint32 looks = 0; looks <= FAR_PLACES && places > 0 && attempts > 0; ++looks) {
        const quint32 place = farPlace(area, from, farEnough);
        from.append(place);
        const quint32 count = std::min<quint32>(READ_BATCH_SECTORS, area.end - place);
        if (unusable.contains(place) || knownHoles.anyTrouble(place, count))
            continue;
        --attempts;
        std::vector<quint8> thrownAway(size_t{count} * RAW_SECTOR_BYTES);
        position = place;
        const DriveReply reply = device->readRaw(place, count, thrownAway, true);
        if (reply.failure == DriveFailure::notReady)
            return wentThere;
        if (reply.delivered(thrownAway.size())) {
            wentThere = true;
            --places;
        } else {
            unusable.append(place);
        }
    }
    return wentThere;
}

// The page of a drive's capabilities, of which bytes 12 and 13 are the size of its
// buffer in KiB. Asked on a disc in doubt alone, once; a refusal tells nothing.
void ColdReads::askForBuffer()
{
    if (std::exchange(askedForBuffer, true))
        return;
    constexpr std::array<quint8, 10> modeSense{0x5A, 0x08, capabilitiesPage, 0, 0, 0, 0, 0, 32, 0};
    std::array<quint8, 32> answer{};
    constexpr size_t header = 8;
    const DriveReply reply = device->passThrough(modeSense, answer);
    if (!reply.ok || reply.transferred < header + 14 || (answer[header] & 0x3F) != capabilitiesPage)
        return;
    const quint32 bytes = quint32{byteorder::readBig<quint16>(answer.data() + header + 12)} * 1024;
    farEnough = std::max(FAR_DISTANCE, bytes / RAW_SECTOR_BYTES + beyondBuffer);
}
