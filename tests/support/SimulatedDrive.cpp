#include "support/SimulatedDrive.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

// Time limits of a read that hangs.
constexpr qint64 guardedLimit = 3'000'000'000;
constexpr qint64 unguardedLimit = 30'000'000'000;
constexpr qint64 passThroughLimit = 5'000'000'000;

constexpr quint8 inquiryCommand = 0x12;
constexpr quint8 readCdCommand = 0xBE;
constexpr quint8 modeSenseCommand = 0x5A;
constexpr quint8 capabilitiesPage = 0x2A;
constexpr quint8 c2Wanted = 0x02; // in byte 9 of READ CD

} // namespace

class SimulatedDevice : public DriveDevice {
public:
    explicit SimulatedDevice(SimulatedDrive& owner) : drive(owner) {}

    DriveReply checkVerify() override { return begin({SimulatedDrive::Command::Verify}); }

    DriveReply readToc(std::span<quint8, 804> table) override
    {
        const DriveReply reply = begin({SimulatedDrive::Command::Toc});
        if (!reply.ok)
            return reply;
        drive.fillToc(table);
        return {true, 0, table.size()};
    }

    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override
    {
        const DriveReply reply =
            begin({guarded ? SimulatedDrive::Command::Raw : SimulatedDrive::Command::SeekRead, lba, count});
        if (!reply.ok)
            return reply;
        const DriveReply cancelled{false, guarded ? ECANCELED : EIO, 0, DriveFailure::timedOut};
        return readSectors(lba, count, data, false, guarded ? guardedLimit : unguardedLimit, cancelled);
    }

    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override
    {
        if (command[0] == inquiryCommand)
            return inquiry(data);
        if (command[0] == modeSenseCommand)
            return capabilities(command, data);
        return command[0] == readCdCommand ? readCd(command, data) : DriveReply{false, EIO};
    }

    std::optional<DriveDescriptor> descriptor() override
    {
        if (drive.gone(drive.commandsSent))
            return std::nullopt;
        return DriveDescriptor{drive.vendor, drive.product, drive.usb};
    }

private:
    DriveReply begin(const SimulatedDrive::Command& command)
    {
        drive.commands.append(command);
        drive.clock += drive.commandNanoseconds;
        return drive.gone(drive.commandsSent++) ? DriveReply{false, ENODEV, 0, DriveFailure::notReady}
                                                : DriveReply{true, 0};
    }

    DriveReply inquiry(std::span<quint8> data)
    {
        const DriveReply reply = begin({SimulatedDrive::Command::Inquiry});
        if (!reply.ok)
            return reply;
        constexpr std::array<quint8, 5> opticalDrive{0x05, 0x80, 0x05, 0x02, 0x1F}; // removable, of 36 bytes
        std::ranges::fill(data, quint8{0});
        std::ranges::copy(opticalDrive, data.begin());
        std::ranges::copy(drive.vendor.left(8), data.begin() + 8);
        std::ranges::copy(drive.product.left(16), data.begin() + 16);
        return {true, 0, data.size()};
    }

    // A mode parameter header of 8 bytes and the page, without block descriptors.
    DriveReply capabilities(std::span<const quint8> command, std::span<quint8> data)
    {
        const DriveReply reply = begin({SimulatedDrive::Command::ModeSense});
        if (!reply.ok)
            return reply;
        if (!drive.announcedKiB || command[2] != capabilitiesPage)
            return {false, EINVAL};
        std::array<quint8, 28> answer{};
        answer[1] = answer.size() - 2;
        answer[8] = capabilitiesPage;
        answer[9] = answer.size() - 10;
        constexpr quint8 exactAudio = 0x03; // it is read, and where it is asked for
        constexpr quint8 pointsAtErrors = 0x10;
        answer[13] = drive.c2Available ? exactAudio | pointsAtErrors : exactAudio;
        byteorder::writeBig(answer.data() + 20, *drive.announcedKiB);
        const size_t length = std::min(answer.size(), data.size());
        std::copy_n(answer.begin(), length, data.begin());
        return {true, 0, length};
    }

    DriveReply readCd(std::span<const quint8> command, std::span<quint8> data)
    {
        const auto lba = byteorder::readBig<quint32>(command.data() + 2);
        const auto count = static_cast<quint32>(command[6] << 16 | command[7] << 8 | command[8]);
        const bool withC2 = (command[9] & c2Wanted) != 0;
        const DriveReply reply =
            begin({withC2 ? SimulatedDrive::Command::RawWithC2 : SimulatedDrive::Command::Raw, lba, count});
        if (!reply.ok)
            return reply;
        if (withC2 && !drive.c2Available)
            return {false, EIO};
        return readSectors(lba, count, data, withC2, passThroughLimit,
                           {false, ETIMEDOUT, 0, DriveFailure::timedOut});
    }

    bool refused(quint32 lba, quint32 count)
    {
        if (quint64{lba} + count > drive.leadOut())
            return true;
        for (quint32 sector = lba; drive.refusesData && sector < lba + count; ++sector) {
            if (!drive.isAudio(sector))
                return true;
        }
        return drive.failingReads > 0 && drive.failingReads-- > 0;
    }

    DriveReply readSectors(quint32 lba, quint32 count, std::span<quint8> data, bool withC2, qint64 limit,
                           const DriveReply& hung)
    {
        const size_t sectorBytes = withC2 ? RAW_PLUS_C2_BYTES : RAW_SECTOR_BYTES;
        if (data.size() < count * sectorBytes)
            return {false, EINVAL};
        if (refused(lba, count))
            return {false, EIO};
        using Reading = SimulatedMechanism::Reading;
        const Reading reading = drive.mechanism.read(lba, count, drive.clock);
        if (reading.end == Reading::Hanging) {
            drive.clock += std::max(limit, drive.timeFloor);
            return hung;
        }
        const bool whole = reading.end == Reading::Whole;
        if (!whole && reading.end != Reading::Short && !drive.partialTransfers)
            return {false, EIO, 0, DriveFailure::unreadable};
        quint32 sector = lba;
        for (const WrongPattern& pattern : reading.patterns) {
            deliver(sector, pattern, data.subspan((sector - lba) * sectorBytes, sectorBytes), withC2);
            ++sector;
        }
        const size_t delivered = (sector - lba) * sectorBytes;
        return whole ? DriveReply{true, 0, delivered}
                     : DriveReply{false, EIO, delivered, DriveFailure::unreadable};
    }

    void deliver(quint32 lba, const WrongPattern& pattern, std::span<quint8> target, bool withC2)
    {
        const auto audio = target.first(RAW_SECTOR_BYTES);
        drive.copyFrames(qint64{lba} * (RAW_SECTOR_BYTES / 4) - drive.readOffset, audio.data());
        pattern.spoil(audio);
        if (withC2)
            setPointers(lba, pattern, target.subspan(RAW_SECTOR_BYTES));
        ++drive.sectorsTransferred;
    }

    void setPointers(quint32 lba, const WrongPattern& pattern, std::span<quint8> pointers)
    {
        using C2 = SimulatedDrive::C2;
        std::ranges::fill(pointers, drive.c2 == C2::AllSet ? quint8{0xFF} : quint8{0});
        if (drive.c2 == C2::AllSet || drive.c2 == C2::NeverSet)
            return;
        const auto set = [&](size_t place) {
            pointers[place / 8] = static_cast<quint8>(pointers[place / 8] | 0x80 >> (place % 8));
        };
        if (!pattern.silent) {
            const double missed = drive.c2 == C2::PartiallyHonest ? drive.c2MissRate : 0;
            pattern.forEachPlace([&](size_t place) {
                if (!happens(missed, scramble(pattern.key, place, 2)))
                    set(place);
            });
        }
        const quint64 alarm = scramble(drive.mechanism.seed, lba, drive.sectorsTransferred);
        if (drive.c2 == C2::Noisy && happens(drive.c2NoiseRate, alarm))
            set(static_cast<size_t>(scramble(alarm, 3, 0) % RAW_SECTOR_BYTES));
    }

    SimulatedDrive& drive;
};

QStringList SimulatedDrive::enumerateDrives()
{
    return gone(commandsSent) ? QStringList{} : QStringList{letter};
}

std::unique_ptr<DriveDevice> SimulatedDrive::open(const QString& name)
{
    return name == letter && !gone(commandsSent) ? std::make_unique<SimulatedDevice>(*this) : nullptr;
}

void SimulatedDrive::sleepMilliseconds(int duration)
{
    commands.append({Command::Sleep, static_cast<quint32>(duration)});
    clock += qint64{duration} * 1'000'000;
}

qsizetype SimulatedDrive::count(Command::Kind kind) const
{
    return std::count_if(commands.cbegin(), commands.cend(),
                         [kind](const Command& c) { return c.kind == kind; });
}
