#pragma once

#include "disc/CdDrive.h"
#include "disc/DiscModel.h"

#include <QString>

struct RipSettings;

/// The drive or image that the wizard has before it, and the disc in it. There is
/// one for the window; its pages share it.
class DiscInHand {
public:
    /// @param inForce  the offset there gives way to that of a drive with one of its own
    explicit DiscInHand(RipSettings& inForce) : settings(inForce) {}

    /// Opens a sheet's image and takes its disc. False leaves the table of the disc
    /// that was there, whose drive or image is shut by then.
    bool openSheet(const QString& path);
    /// Opens a drive, and takes over its model and its own read offset. False as above.
    bool openDrive(const QString& letter);
    /// Takes the disc in the open drive. False leaves the table of the one that was there.
    bool readDisc();
    /// An audio file is a disc of one track, named after the file.
    void takeAudioFile(const QString& path);
    void clear();

    /// Borrows the drive for a rip of the disc. False for no disc, for the track that an
    /// audio file leaves behind when it is no longer chosen, for a disc that has left its
    /// drive or whose drive or image is shut by now, and while another rip has the drive.
    [[nodiscard]] bool claim();

    bool isAudioFile() const;
    /// Whether a rip is reading this very disc.
    bool isBeingRipped() const;
    qint32 audioSectors() const;

    /// Stores an offset as the drive's own, for the next time that it is opened.
    void storeOwnOffset(int samples);

    CdDrive drive;
    DiscToc toc;
    QString driveModel;   ///< empty before a drive is opened, and for one that does not tell
    QString offsetSource; ///< where the offset in force comes from, in brackets

private:
    void takeDriveOffset();

    RipSettings& settings;
    bool leftItsDrive = false; ///< the disc of the table, which stays on the pages
};
