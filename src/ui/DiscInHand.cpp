#include "ui/DiscInHand.h"

#include "base/Settings.h"
#include "ui/RipSettings.h"

#include <QFileInfo>
#include <QSettings>

namespace {

QString inBrackets(const QString& source)
{
    return QLatin1Char('(') + source + QLatin1Char(')');
}

QString offsetKey(const QString& model)
{
    return driveOffsetKey(model) + QStringLiteral("/offset");
}

QString sourceKey(const QString& model)
{
    return driveOffsetKey(model) + QStringLiteral("/source");
}

} // namespace

bool DiscInHand::openSheet(const QString& path)
{
    if (!drive.openCue(path))
        return false;
    toc = drive.readToc();
    leftItsDrive = false;
    return true;
}

bool DiscInHand::openDrive(const QString& letter)
{
    if (!drive.open(letter))
        return false;
    driveModel = drive.queryModel();
    takeDriveOffset();
    return true;
}

void DiscInHand::takeDriveOffset()
{
    const QSettings stored;
    if (driveModel.isEmpty()) {
        offsetSource = QStringLiteral("(drive model unknown - Settings value)");
    } else if (!stored.contains(offsetKey(driveModel))) {
        offsetSource = QStringLiteral("(Settings value)");
    } else {
        settings.sampleOffset = stored.value(offsetKey(driveModel)).toInt();
        offsetSource = inBrackets(stored.value(sourceKey(driveModel), QStringLiteral("saved")).toString());
    }
}

bool DiscInHand::readDisc()
{
    const DiscToc read = drive.readToc();
    leftItsDrive = read.tracks.isEmpty();
    if (leftItsDrive)
        return false;
    toc = read;
    return true;
}

void DiscInHand::takeAudioFile(const QString& path)
{
    TrackInfo track;
    track.number = 1;
    track.title = QFileInfo(path).completeBaseName();
    track.sourceIsAudioFile = true;
    toc = DiscToc();
    toc.tracks = {track};
}

void DiscInHand::clear()
{
    toc = DiscToc();
    drive.close();
}

bool DiscInHand::claim()
{
    if (toc.tracks.isEmpty() || isAudioFile() || leftItsDrive || !drive.borrow())
        return false;
    if (drive.isOpen())
        return true;
    drive.giveBack();
    return false;
}

bool DiscInHand::isAudioFile() const
{
    // The track of a sheet names the file that its sheet names.
    return toc.tracks.size() == 1 && toc.tracks.first().sourceIsAudioFile
           && toc.tracks.first().sourceFile.isEmpty();
}

bool DiscInHand::isBeingRipped() const
{
    return drive.isBorrowed() && !toc.tracks.isEmpty() && !toc.tracks.first().sourceIsAudioFile;
}

qint32 DiscInHand::audioSectors() const
{
    quint32 sum = 0;
    for (const TrackInfo& track : toc.tracks) {
        if (!track.isData)
            sum += track.endLba - track.startLba + 1;
    }
    return static_cast<qint32>(sum);
}

void DiscInHand::storeOwnOffset(int samples)
{
    const QString source = QStringLiteral("set in Settings");
    QSettings stored;
    stored.setValue(offsetKey(driveModel), samples);
    stored.setValue(sourceKey(driveModel), source);
    offsetSource = inBrackets(source);
}
