#include "playeddrive/DriveDescription.h"

#include "disc/DiscModel.h"
#include "support/DamagedDiscs.h"
#include "support/DiscMaker.h"

#include <QFile>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

QString variable(const char* name)
{
    return QStringLiteral("TARVEL_DRIVE_") + QLatin1String(name);
}

// The same is asked for again and again, and takes its time to make.
QByteArray madeAudio(int seconds, quint32 seed)
{
    static QHash<std::pair<int, quint32>, QByteArray> made;
    QByteArray& audio = made[{seconds, seed}];
    if (audio.isEmpty())
        audio = makeAudio(seconds * SECTORS_PER_SECOND, seed);
    return audio;
}

QByteArray audioOf(const DriveDescription& description)
{
    if (description.audioFile.isEmpty())
        return madeAudio(description.seconds, description.audioSeed);
    QFile file(description.audioFile);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("no such audio: " + description.audioFile.toStdString());
    const QByteArray audio = file.readAll();
    return audio.left(audio.size() / RAW_SECTOR_BYTES * RAW_SECTOR_BYTES);
}

QString joined(const QList<quint32>& numbers)
{
    QStringList words;
    for (const quint32 number : numbers)
        words.append(QString::number(number));
    return words.join(u',');
}

QList<quint32> numbersIn(const QString& text)
{
    QList<quint32> numbers;
    for (const QString& word : text.split(u',', Qt::SkipEmptyParts))
        numbers.append(word.toUInt());
    return numbers;
}

} // namespace

QMap<QString, QString> DriveDescription::toEnvironment() const
{
    return {{variable("DISC"), disc},
            {variable("SEED"), QString::number(seed)},
            {variable("SECONDS"), QString::number(seconds)},
            {variable("AUDIO_SEED"), QString::number(audioSeed)},
            {variable("AUDIO"), audioFile},
            {variable("TRACKS"), joined(trackStarts)},
            {variable("OFFSET"), QString::number(readOffset)},
            {variable("USB"), QString::number(usb ? 1 : 0)},
            {variable("C2"), QString::number(c2 ? 1 : 0)},
            {variable("PACE"), QString::number(pace)}};
}

DriveDescription DriveDescription::fromEnvironment()
{
    DriveDescription found;
    QMap<QString, QString> values = found.toEnvironment();
    for (auto value = values.begin(); value != values.end(); ++value)
        value.value() = qEnvironmentVariable(qPrintable(value.key()), value.value());
    const auto text = [&](const char* name) { return values[variable(name)]; };
    found.disc = text("DISC");
    found.seed = text("SEED").toULongLong();
    found.seconds = std::max(1, text("SECONDS").toInt());
    found.audioSeed = text("AUDIO_SEED").toUInt();
    found.audioFile = text("AUDIO");
    found.trackStarts = numbersIn(text("TRACKS"));
    found.readOffset = text("OFFSET").toInt();
    found.usb = text("USB").toInt() != 0;
    found.c2 = text("C2").toInt() != 0;
    found.pace = text("PACE").toDouble();
    return found;
}

void setUpDrive(SimulatedDrive& drive, const DriveDescription& description)
{
    const auto disc = std::find_if(damagedDiscs().cbegin(), damagedDiscs().cend(),
                                   [&](const DamagedDisc& one) { return one.name == description.disc; });
    if (disc == damagedDiscs().cend())
        throw std::runtime_error("no such disc: " + description.disc.toStdString());
    insertSoundDisc(drive, audioOf(description));
    if (!description.trackStarts.isEmpty()) {
        drive.tracks.clear();
        for (const quint32 start : description.trackStarts)
            drive.tracks.append(SimulatedTrack{start});
    }
    drive.usb = description.usb;
    drive.readOffset = description.readOffset;
    drive.c2Available = description.c2;
    drive.mechanism.seed = description.seed;
    disc->damage(drive, description.seed);
}
