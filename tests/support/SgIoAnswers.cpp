#include "support/SgIoAnswers.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <algorithm>
#include <array>
#include <vector>

#include <scsi/sg.h>

namespace {

constexpr unsigned guardedTimeOutMs = 3000; // of the reads that a device calls guarded
constexpr size_t inquiryBytes = 36;         // what a drive sends at most
constexpr size_t tocHeaderBytes = 4;
constexpr size_t tocEntryBytes = 8;

enum class Illegal { Command, Field };

void refuse(sg_io_hdr& header, int key, int code, int qualifier)
{
    putScsiStatus(header, checkConditionStatus, fixedSense(key, code, qualifier));
    header.driver_status = senseDriverStatus;
    header.resid = static_cast<int>(header.dxfer_len);
}

void refuse(sg_io_hdr& header, Illegal what)
{
    refuse(header, 5, what == Illegal::Command ? 0x20 : 0x24, 0x00);
}

void refuseWithoutMedium(sg_io_hdr& header)
{
    refuse(header, 2, 0x3A, 0x00);
}

// What the drive behind says of a command that failed, in the kernel's words.
void refuseAs(const DriveReply& reply, sg_io_hdr& header)
{
    if (reply.failure == DriveFailure::notReady) {
        refuseWithoutMedium(header);
    } else if (reply.failure == DriveFailure::timedOut) {
        header.host_status = timeOutHostStatus;
        header.duration = header.timeout;
        header.resid = static_cast<int>(header.dxfer_len);
    } else {
        refuse(header, 3, 0x11, 0x05); // medium error: unrecovered read error
    }
}

void deliver(sg_io_hdr& header, std::span<const quint8> bytes)
{
    const size_t length = std::min<size_t>(bytes.size(), header.dxfer_len);
    std::copy_n(bytes.data(), length, static_cast<quint8*>(header.dxferp));
    header.resid = static_cast<int>(header.dxfer_len - length);
}

size_t lengthOfCommand(quint8 opcode)
{
    constexpr std::array<size_t, 8> lengths{6, 10, 10, 0, 16, 12, 0, 0}; // by the group of the code
    return lengths[opcode >> 5];
}

// The address of an entry as a block number in place of minute, second and frame.
void countInBlocks(quint8* entry)
{
    const int frames = (entry[5] * 60 + entry[6]) * SECTORS_PER_SECOND + entry[7];
    byteorder::writeBig(entry + 4, static_cast<quint32>(frames - static_cast<int>(LEAD_IN_SECTORS)));
}

} // namespace

QByteArray fixedSense(int key, int code, int qualifier)
{
    QByteArray sense(18, '\0');
    sense[0] = 0x70;
    sense[2] = static_cast<char>(key);
    sense[7] = 10; // bytes that follow
    sense[12] = static_cast<char>(code);
    sense[13] = static_cast<char>(qualifier);
    return sense;
}

void putScsiStatus(sg_io_hdr& header, int status, const QByteArray& sense)
{
    header.status = static_cast<unsigned char>(status);
    header.masked_status = static_cast<unsigned char>(status >> 1);
    const auto length = std::min<qsizetype>(sense.size(), header.mx_sb_len);
    std::copy_n(sense.constData(), length, header.sbp);
    header.sb_len_wr = static_cast<unsigned char>(length);
}

void SgIoAnswers::answer(sg_io_hdr& header)
{
    header.status = header.masked_status = header.sb_len_wr = 0;
    header.host_status = header.driver_status = 0;
    header.resid = 0;
    header.duration = 1;
    const quint8 opcode = header.cmdp[0];
    if (header.cmd_len != lengthOfCommand(opcode)) {
        refuse(header, Illegal::Command);
        return;
    }
    switch (opcode) {
    case 0x00:
        return testUnitReady(header);
    case 0x03:
        return requestSense(header);
    case 0x12:
        return inquiry(header);
    case 0x1B: // START STOP UNIT
    case 0x1E: // PREVENT ALLOW MEDIUM REMOVAL
    case 0xBB: // SET CD SPEED
        return testUnitReady(header);
    case 0x43:
        return readToc(header);
    case 0x5A:
        return modeSense(header);
    case 0xBE:
        return readCd(header);
    default:
        return refuse(header, Illegal::Command);
    }
}

void SgIoAnswers::testUnitReady(sg_io_hdr& header)
{
    if (!device.checkVerify().ok)
        refuseWithoutMedium(header);
}

// Nothing is kept for it: the sense data came with the refusal.
void SgIoAnswers::requestSense(sg_io_hdr& header)
{
    const QByteArray nothing = fixedSense(0, 0, 0).left(header.cmdp[4]);
    deliver(header,
            {reinterpret_cast<const quint8*>(nothing.constData()), static_cast<size_t>(nothing.size())});
}

void SgIoAnswers::inquiry(sg_io_hdr& header)
{
    std::array<quint8, 96> data{};
    device.passThrough({header.cmdp, 6}, data);
    deliver(header, std::span(data).first(std::min<size_t>({inquiryBytes, header.cmdp[4], data.size()})));
}

void SgIoAnswers::readToc(sg_io_hdr& header)
{
    const unsigned char* command = header.cmdp;
    const bool inBlocks = (command[1] & 0x02) == 0;
    if ((command[1] & ~0x02) != 0 || command[2] != 0 || command[9] != 0)
        return refuse(header, Illegal::Field);
    std::array<quint8, 804> table{};
    if (!device.readToc(table).ok)
        return refuseWithoutMedium(header);
    const size_t entries = table[3] >= table[2] ? size_t{table[3]} - table[2] + 2 : 1;
    size_t used =
        announceWholeToc ? table.size() : std::min(table.size(), tocHeaderBytes + entries * tocEntryBytes);
    // The entries of the tracks before the one that is asked for are left out.
    quint8* const first = table.data() + tocHeaderBytes;
    size_t left = 0;
    while (command[6] > table[2] && left + 1 < entries && first[left * tocEntryBytes + 2] < command[6])
        ++left;
    std::copy(first + left * tocEntryBytes, table.data() + table.size(), first);
    used -= left * tocEntryBytes;
    for (size_t place = tocHeaderBytes; inBlocks && place + tocEntryBytes <= used; place += tocEntryBytes)
        countInBlocks(table.data() + place);
    byteorder::writeBig(table.data(), static_cast<quint16>(used - 2));
    deliver(header, std::span(table).first(std::min<size_t>(used, byteorder::readBig<quint16>(command + 7))));
}

void SgIoAnswers::readCd(sg_io_hdr& header)
{
    const unsigned char* command = header.cmdp;
    const int wantedType = command[1] >> 2; // any, or audio alone
    const int errorBits = command[9] & 0x06;
    const bool withC2 = errorBits == 0x02;
    // With or without what surrounds it in other kinds of sectors: of an audio sector
    // the user data is all there is.
    const bool userData = (command[9] & 0x10) != 0 && (command[9] & 0x01) == 0;
    if (wantedType > 1 || !userData || (errorBits != 0 && !withC2) || command[10] != 0 || command[11] != 0)
        return refuse(header, Illegal::Field);
    const auto lba = byteorder::readBig<quint32>(command + 2);
    const auto count = static_cast<quint32>(command[6] << 16 | command[7] << 8 | command[8]);
    std::vector<quint8> data(size_t{count} * (withC2 ? RAW_PLUS_C2_BYTES : RAW_SECTOR_BYTES));
    const DriveReply reply = withC2 ? device.passThrough({command, 12}, data)
                                    : device.readRaw(lba, count, data, header.timeout == guardedTimeOutMs);
    if (reply.ok)
        deliver(header, data);
    else
        refuseAs(reply, header);
}

void SgIoAnswers::modeSense(sg_io_hdr& header)
{
    std::vector<quint8> data(header.dxfer_len);
    const DriveReply reply = device.passThrough({header.cmdp, 10}, data);
    if (reply.ok)
        deliver(header, std::span(data).first(reply.transferred));
    else
        refuse(header, Illegal::Field);
}
