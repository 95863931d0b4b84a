#include "support/SimulatedDrive.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <algorithm>

namespace {

constexpr int ioError = 5;

void putEntry(std::span<quint8, 804> table, int place, int number, quint32 lba, bool isData)
{
    quint8* entry = table.data() + 4 + place * 8;
    const quint32 address = lba + 150;
    entry[1] = static_cast<quint8>(0x10 | (isData ? 0x04 : 0x00));
    entry[2] = static_cast<quint8>(number);
    entry[5] = static_cast<quint8>(address / 75 / 60);
    entry[6] = static_cast<quint8>(address / 75 % 60);
    entry[7] = static_cast<quint8>(address % 75);
}

} // namespace

class SimulatedDevice : public DriveDevice {
public:
    explicit SimulatedDevice(SimulatedDrive& owner)
        : drive(owner)
    {
    }

    DriveReply checkVerify() override
    {
        note({SimulatedDrive::Command::Verify});
        return {true, 0};
    }

    DriveReply readToc(std::span<quint8, 804> table) override
    {
        note({SimulatedDrive::Command::Toc});
        const auto count = static_cast<int>(drive.tracks.size());
        table[2] = static_cast<quint8>(drive.firstTrackNumber);
        table[3] = static_cast<quint8>(drive.firstTrackNumber + count - 1);
        for (int i = 0; i < count; ++i)
            putEntry(table, i, drive.firstTrackNumber + i, drive.tracks[i].startLba, drive.tracks[i].isData);
        putEntry(table, count, 0xAA, drive.leadOut(), false);
        return {true, 0};
    }

    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override
    {
        note({guarded ? SimulatedDrive::Command::Raw : SimulatedDrive::Command::SeekRead, lba, count});
        if (!readable(lba, count) || failsNow())
            return {false, ioError};
        copySectors(lba, count, data.data());
        return {true, 0};
    }

    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override
    {
        return command[0] == 0x12 ? inquiry(data) : readCd(command, data);
    }

    std::optional<DriveDescriptor> descriptor() override
    {
        return DriveDescriptor{drive.vendor, drive.product, drive.usb};
    }

private:
    void note(const SimulatedDrive::Command& command)
    {
        drive.commands.append(command);
        drive.clock += drive.commandNanoseconds;
    }

    bool readable(quint32 lba, quint32 count) const { return lba + count <= drive.leadOut(); }

    bool failsNow()
    {
        if (drive.failingReads == 0)
            return false;
        --drive.failingReads;
        return true;
    }

    void copySectors(quint32 lba, quint32 count, quint8* target) const
    {
        const QByteArray sectors =
            drive.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, qsizetype{count} * RAW_SECTOR_BYTES);
        std::ranges::copy(sectors, target);
    }

    DriveReply inquiry(std::span<quint8> data)
    {
        note({SimulatedDrive::Command::Inquiry});
        std::ranges::fill(data, quint8{0});
        std::ranges::copy(drive.vendor.left(8), data.begin() + 8);
        std::ranges::copy(drive.product.left(16), data.begin() + 16);
        return {true, 0};
    }

    DriveReply readCd(std::span<const quint8> command, std::span<quint8> data)
    {
        const auto lba = byteorder::readBig<quint32>(command.data() + 2);
        const auto count = static_cast<quint32>(command[6] << 16 | command[7] << 8 | command[8]);
        note({SimulatedDrive::Command::RawWithC2, lba, count});
        if (!drive.c2Available || !readable(lba, count) || failsNow())
            return {false, ioError};
        std::ranges::fill(data, quint8{0});
        for (quint32 i = 0; i < count; ++i)
            copySectors(lba + i, 1, data.data() + size_t{i} * RAW_PLUS_C2_BYTES);
        return {true, 0};
    }

    SimulatedDrive& drive;
};

QStringList SimulatedDrive::enumerateDrives()
{
    return {letter};
}

std::unique_ptr<DriveDevice> SimulatedDrive::open(const QString& name)
{
    return name == letter ? std::make_unique<SimulatedDevice>(*this) : nullptr;
}

void SimulatedDrive::sleepMilliseconds(int duration)
{
    commands.append({Command::Sleep, static_cast<quint32>(duration)});
    clock += qint64{duration} * 1'000'000;
}

quint32 SimulatedDrive::leadOut() const
{
    return static_cast<quint32>(audio.size() / RAW_SECTOR_BYTES);
}

qsizetype SimulatedDrive::count(Command::Kind kind) const
{
    return std::count_if(commands.cbegin(), commands.cend(), [kind](const Command& c) { return c.kind == kind; });
}
