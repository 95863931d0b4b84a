#include "support/DiscMaker.h"

#include "base/ByteOrder.h"

#include <QFile>
#include <QTextStream>

#include <cmath>
#include <numbers>
#include <random>
#include <stdexcept>

namespace {

constexpr int sectorBytes = 2352;

QByteArray little32(quint32 value)
{
    QByteArray bytes(4, '\0');
    byteorder::writeLittle(bytes.data(), value);
    return bytes;
}

} // namespace

QByteArray makeAudio(int sectors, quint32 seed)
{
    const int frames = sectors * sectorBytes / 4;
    QByteArray audio(static_cast<qsizetype>(sectors) * sectorBytes, '\0');
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> noise(-200, 200);
    const double step = 2 * std::numbers::pi * (220.0 + seed % 200) / 44100;
    for (int i = 0; i < frames; ++i) {
        const double tone = 12000 * std::sin(step * i);
        byteorder::writeLittle(audio.data() + 4 * i, static_cast<qint16>(tone + noise(random)));
        byteorder::writeLittle(audio.data() + 4 * i + 2, static_cast<qint16>(-tone / 2 + noise(random)));
    }
    return audio;
}

QString cueTime(int sector)
{
    const QLatin1Char zero('0');
    return QStringLiteral("%1:%2:%3")
        .arg(sector / 75 / 60, 2, 10, zero)
        .arg(sector / 75 % 60, 2, 10, zero)
        .arg(sector % 75, 2, 10, zero);
}

QString writeFile(const QString& folder, const QString& name, const QByteArray& bytes)
{
    const QString path = folder + QLatin1Char('/') + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
    return path;
}

QString writeImage(const QString& folder, const ImageDescription& description, const QByteArray& image)
{
    writeFile(folder, description.imageName, image);
    QString sheet;
    QTextStream out(&sheet);
    out << "PERFORMER \"" << description.artist << "\"\nTITLE \"" << description.album << "\"\nREM DATE "
        << description.year << "\nFILE \"" << description.imageName << "\" " << description.imageType << "\n";
    int number = 0;
    for (const ImageTrack& track : description.tracks) {
        out << "  TRACK " << QStringLiteral("%1").arg(++number, 2, 10, QLatin1Char('0')) << " AUDIO\n";
        if (!track.title.isEmpty())
            out << "    TITLE \"" << track.title << "\"\n";
        out << "    INDEX 01 " << cueTime(track.startSector) << "\n";
    }
    return writeFile(folder, QStringLiteral("disc.cue"), sheet.toUtf8());
}

QByteArray wrapInWave(const QByteArray& audio, const QByteArray& chunksBefore)
{
    QByteArray format("fmt ");
    format += little32(16);
    format += QByteArray::fromHex("0100020044ac000010b1020004001000");
    const QByteArray body =
        "WAVE" + format + chunksBefore + "data" + little32(static_cast<quint32>(audio.size())) + audio;
    return "RIFF" + little32(static_cast<quint32>(body.size())) + body;
}
