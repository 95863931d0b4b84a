#include "playeddrive/PlayedFiles.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace playedfiles {

namespace {

// The second is the drive's own, of which no other device lies below.
constexpr std::array<std::string_view, 3> subjects{"/sys/class/block/sr0", "/sys/devices/tarvel-played-drive",
                                                   "/proc/sys/dev/cdrom/info"};

void write(const std::filesystem::path& path, std::string_view text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace

void make(const std::string& folder, const Drive& drive)
{
    const std::filesystem::path root(folder);
    const std::string device =
        std::string("devices/tarvel-played-drive/") + (drive.usb ? "usb1" : "ata1") + "/host0/0:0:0:0";
    const std::filesystem::path block = root / "sys" / device / "block/sr0";
    write(root / "proc/sys/dev/cdrom/info", "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\n"
                                            "drive name:\t\tsr0\n"
                                            "drive speed:\t\t40\n");
    write(root / "sys" / device / "vendor", drive.vendor.toStdString() + "\n");
    write(root / "sys" / device / "model", drive.model.toStdString() + "\n");
    write(block / "queue/max_hw_sectors_kb", std::to_string(drive.transferLimit / 1024) + "\n");
    write(block / "dev", "11:0\n");
    std::filesystem::create_directories(root / "sys" / device / "scsi_generic/sg0");
    std::filesystem::create_directories(root / "sys/class/block");
    std::filesystem::remove(block / "device");
    std::filesystem::create_symlink("../..", block / "device");
    const std::filesystem::path entry = root / "sys/class/block/sr0";
    std::filesystem::remove(entry);
    std::filesystem::create_symlink("../../" + device + "/block/sr0", entry);
}

std::optional<std::string> placeOf(const std::string& folder, const char* path)
{
    const std::string_view asked(path);
    for (const std::string_view subject : subjects) {
        const bool below =
            asked.starts_with(subject) && (asked.size() == subject.size() || asked[subject.size()] == '/');
        if (below)
            return folder + path;
    }
    return std::nullopt;
}

std::string nameOf(const std::string& folder, const std::string& place)
{
    return place.starts_with(folder + '/') ? place.substr(folder.size()) : place;
}

} // namespace playedfiles
