#pragma once

#include "disc/DiscModel.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"

#include <QHash>

/// What one transfer of a sector gives.
struct SectorAnswer {
    bool fails = false; ///< the whole command fails
    char change = 0;    ///< added to the first byte of what the disc holds
    int c2Bits = 0;     ///< set in front of the sector's C2 block
};

/// A simulated drive whose answers for single sectors are given one by one, in
/// the order in which commands reach them; then the sector is clean.
class ScriptedDrive : public SimulatedDrive {
public:
    explicit ScriptedDrive(int sectors, quint32 seed = 5) { audio = makeAudio(sectors, seed); }

    std::unique_ptr<DriveDevice> open(const QString& name) override;

    void script(quint32 lba, const QList<SectorAnswer>& answers) { scripts[lba].append(answers); }
    /// The next reads of the sector end empty: each takes a ladder of 35 attempts, the first one,
    /// that of a batch, an attempt at the sector alone as well.
    void failReads(quint32 lba, int reads) { script(lba, QList<SectorAnswer>(35 * reads + 1, {true})); }

    QByteArray truth(quint32 lba, quint32 count = 1) const
    {
        return audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, qsizetype{count} * RAW_SECTOR_BYTES);
    }
    QByteArray changed(quint32 lba, char change) const
    {
        QByteArray sector = truth(lba);
        sector[0] = static_cast<char>(sector[0] + change);
        return sector;
    }

    QHash<quint32, QList<SectorAnswer>> scripts;
};

/// Passes every command on to the clean drive and changes the answers.
class ScriptedDevice : public DriveDevice {
public:
    ScriptedDevice(ScriptedDrive& owner, std::unique_ptr<DriveDevice> cleanDevice)
        : drive(owner), clean(std::move(cleanDevice))
    {
    }

    DriveReply checkVerify() override { return clean->checkVerify(); }
    DriveReply readToc(std::span<quint8, 804> table) override { return clean->readToc(table); }
    std::optional<DriveDescriptor> descriptor() override { return clean->descriptor(); }

    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override
    {
        DriveReply reply = clean->readRaw(lba, count, data, guarded);
        // A seek read is no read of its sectors: its outcome is ignored.
        return guarded ? answer(reply, lba, count, data, RAW_SECTOR_BYTES) : reply;
    }

    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override
    {
        DriveReply reply = clean->passThrough(command, data);
        if (command[0] != 0xBE)
            return reply;
        const auto lba =
            static_cast<quint32>(command[2] << 24 | command[3] << 16 | command[4] << 8 | command[5]);
        return answer(reply, lba, command[8], data, RAW_PLUS_C2_BYTES);
    }

private:
    DriveReply answer(DriveReply reply, quint32 lba, quint32 count, std::span<quint8> data, size_t stride)
    {
        for (quint32 place = 0; place < count && reply.ok; ++place) {
            auto& waiting = drive.scripts[lba + place];
            if (waiting.isEmpty())
                continue;
            const SectorAnswer next = waiting.takeFirst();
            if (next.fails)
                return {false, 5};
            quint8* sector = data.data() + place * stride;
            sector[0] = static_cast<quint8>(sector[0] + next.change);
            if (stride == RAW_PLUS_C2_BYTES) {
                for (int bit = 0; bit < next.c2Bits; ++bit)
                    sector[RAW_SECTOR_BYTES + bit / 8] |= static_cast<quint8>(0x80 >> bit % 8);
            }
        }
        return reply;
    }

    ScriptedDrive& drive;
    std::unique_ptr<DriveDevice> clean;
};

inline std::unique_ptr<DriveDevice> ScriptedDrive::open(const QString& name)
{
    auto device = SimulatedDrive::open(name);
    return device ? std::make_unique<ScriptedDevice>(*this, std::move(device)) : nullptr;
}
