#include "playeddrive/CookedRequests.h"

#include "disc/DiscModel.h"
#include "support/SimulatedDisc.h"

#include <algorithm>
#include <cerrno>

#include <linux/cdrom.h>
#include <scsi/sg.h>

namespace {

constexpr int genericVersion = 30536; // 3.5.36, what the kernel has said for twenty years

// The kernel's names for these are in no header that programs get.
constexpr unsigned long addressOfDeviceRequest = 0x5382;
constexpr unsigned long busOfDeviceRequest = 0x5386;

int refuse(int error)
{
    errno = error;
    return -1;
}

int number(void* argument, int value)
{
    *static_cast<int*>(argument) = value;
    return 0;
}

cdrom_addr addressOf(quint32 lba, int format)
{
    cdrom_addr address{};
    if (format == CDROM_LBA) {
        address.lba = static_cast<int>(lba);
        return address;
    }
    const quint32 frames = lba + LEAD_IN_SECTORS;
    address.msf.minute = static_cast<__u8>(frames / 75 / 60);
    address.msf.second = static_cast<__u8>(frames / 75 % 60);
    address.msf.frame = static_cast<__u8>(frames % 75);
    return address;
}

int lastTrackOf(const SimulatedDisc& disc)
{
    return disc.firstTrackNumber + static_cast<int>(disc.tracks.size()) - 1;
}

int tocHeader(const SimulatedDisc& disc, cdrom_tochdr& header)
{
    header.cdth_trk0 = static_cast<__u8>(disc.firstTrackNumber);
    header.cdth_trk1 = static_cast<__u8>(lastTrackOf(disc));
    return 0;
}

int tocEntry(const SimulatedDisc& disc, cdrom_tocentry& entry)
{
    const bool leadOut = entry.cdte_track == CDROM_LEADOUT;
    if (entry.cdte_format != CDROM_LBA && entry.cdte_format != CDROM_MSF)
        return refuse(EINVAL);
    if (!leadOut && (entry.cdte_track < disc.firstTrackNumber || entry.cdte_track > lastTrackOf(disc)))
        return refuse(EINVAL);
    const SimulatedTrack track =
        leadOut ? SimulatedTrack{disc.leadOut()} : disc.tracks[entry.cdte_track - disc.firstTrackNumber];
    entry.cdte_adr = 1;
    entry.cdte_ctrl = track.isData ? CDROM_DATA_TRACK : 0;
    entry.cdte_addr = addressOf(track.startLba, entry.cdte_format);
    return 0;
}

int lastSession(const SimulatedDisc& disc, cdrom_multisession& session)
{
    const auto first = std::find_if(disc.tracks.cbegin(), disc.tracks.cend(), [&](const SimulatedTrack& one) {
        return one.session == disc.tracks.last().session;
    });
    session.xa_flag = first->session > 1 ? 1 : 0;
    session.addr = addressOf(session.xa_flag ? first->startLba : 0, session.addr_format);
    return 0;
}

} // namespace

int CookedRequests::answer(unsigned long code, void* argument)
{
    switch (code) {
    case CDROM_GET_CAPABILITY:
        return CDC_SELECT_SPEED | CDC_LOCK | CDC_MULTI_SESSION | CDC_MEDIA_CHANGED | CDC_PLAY_AUDIO
               | CDC_DRIVE_STATUS | CDC_GENERIC_PACKET;
    case CDROM_DRIVE_STATUS:
        return CDS_DISC_OK;
    case CDROM_DISC_STATUS:
        return std::any_of(disc.tracks.cbegin(), disc.tracks.cend(),
                           [](const SimulatedTrack& one) { return one.isData; })
                   ? CDS_MIXED
                   : CDS_AUDIO;
    case CDROM_SELECT_SPEED:
    case CDROM_LOCKDOOR:
    case CDROM_SET_OPTIONS:
    case SG_SET_TIMEOUT:
        return 0;
    case CDROMREADTOCHDR:
        return tocHeader(disc, *static_cast<cdrom_tochdr*>(argument));
    case CDROMREADTOCENTRY:
        return tocEntry(disc, *static_cast<cdrom_tocentry*>(argument));
    case CDROMMULTISESSION:
        return lastSession(disc, *static_cast<cdrom_multisession*>(argument));
    case SG_GET_VERSION_NUM:
        return number(argument, genericVersion);
    case SG_GET_RESERVED_SIZE:
        return number(argument, reserved);
    case SG_SET_RESERVED_SIZE:
        reserved = std::clamp(*static_cast<const int*>(argument), 0, largest);
        return 0;
    case SG_EMULATED_HOST:
        return number(argument, 1);
    case busOfDeviceRequest:
        return number(argument, 0);
    case addressOfDeviceRequest: // and the host's number
        std::fill_n(static_cast<int*>(argument), 2, 0);
        return 0;
    default:
        return refuse(ENOTTY);
    }
}
