#include "MusicImage.h"

#include "base/ByteOrder.h"
#include "support/DiscMaker.h"

#include <QDir>
#include <QFile>

#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <stdexcept>

namespace {

constexpr int sectorBytes = 2352;
constexpr int sectorsPerMinute = 75 * 60;
constexpr int noteSectors = 25; // a third of a second
constexpr int noteFrames = noteSectors * sectorBytes / 4;
constexpr int riffSizePlace = 4;
constexpr int dataSizePlace = 40;
constexpr double sampleRate = 44100;

// One decaying sound of four partials, turned by complex multiplication.
class Voice {
public:
    void strike(double hertz, double height, double newPan)
    {
        pan = newPan;
        for (std::size_t i = 0; i < partials.size(); ++i) {
            const double order = static_cast<double>(i + 1);
            const double fade = std::exp(-order * 1.5 / sampleRate);
            partials[i] = std::polar(height / (order * order), order);
            turns[i] = std::polar(fade, 2 * std::numbers::pi * hertz * order / sampleRate);
        }
    }

    void addTo(double& left, double& right)
    {
        double sum = 0;
        for (std::size_t i = 0; i < partials.size(); ++i) {
            const double real = partials[i].real() * turns[i].real() - partials[i].imag() * turns[i].imag();
            const double imag = partials[i].real() * turns[i].imag() + partials[i].imag() * turns[i].real();
            partials[i] = {real, imag};
            sum += imag;
        }
        left += sum * (1 - pan);
        right += sum * pan;
    }

private:
    std::array<std::complex<double>, 4> partials{};
    std::array<std::complex<double>, 4> turns{};
    double pan = 0.5;
};

class Musician {
public:
    QByteArray nextNote()
    {
        static constexpr int scale[] = {0, 2, 4, 7, 9, 12, 14, 16};
        const double pitch = std::pow(2.0, scale[below(8)] / 12.0);
        voices[static_cast<std::size_t>(notes % 3)].strike(110.0 * (1 + notes % 3) * pitch,
                                                           4000.0 + below(4000), 0.25 + below(51) / 100.0);
        ++notes;
        QByteArray audio(noteFrames * 4, Qt::Uninitialized);
        for (int i = 0; i < noteFrames; ++i) {
            double left = noise();
            double right = noise();
            for (Voice& voice : voices)
                voice.addTo(left, right);
            byteorder::writeLittle(audio.data() + 4 * i, static_cast<qint16>(left));
            byteorder::writeLittle(audio.data() + 4 * i + 2, static_cast<qint16>(right));
        }
        return audio;
    }

private:
    int below(unsigned bound) { return static_cast<int>(random() % bound); }
    double noise() { return below(121) - 60.0; }

    std::minstd_rand random{1};
    std::array<Voice, 3> voices;
    int notes = 0;
};

void openOrThrow(QFile& file, QIODevice::OpenMode mode)
{
    if (!file.open(mode))
        throw std::runtime_error("cannot open " + file.fileName().toStdString());
}

void writeOrThrow(QFile& file, const QByteArray& bytes)
{
    if (file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
}

} // namespace

qint64 MusicImage::trackBytes() const
{
    return qint64{trackSectors} * sectorBytes;
}

MusicImage makeMusicImage(const QString& folder, int minutes, int tracks)
{
    MusicImage image;
    image.tracks = tracks;
    image.trackSectors = minutes * sectorsPerMinute / tracks / noteSectors * noteSectors;
    if (!QDir().mkpath(folder) || image.trackSectors <= 0)
        throw std::runtime_error("no such image");
    ImageDescription description;
    for (int track = 0; track < tracks; ++track)
        description.tracks.append({track * image.trackSectors, QStringLiteral("Piece %1").arg(track + 1)});
    image.cue = writeImage(folder, description, {});
    image.bin = folder + QLatin1Char('/') + description.imageName;

    QFile file(image.bin);
    openOrThrow(file, QIODevice::WriteOnly);
    Musician musician;
    for (int sector = 0; sector < tracks * image.trackSectors; sector += noteSectors)
        writeOrThrow(file, musician.nextNote());
    return image;
}

QStringList writeTrackWaves(const MusicImage& image, const QString& folder)
{
    QByteArray header = wrapInWave({});
    const auto bytes = static_cast<quint32>(image.trackBytes());
    byteorder::writeLittle(header.data() + riffSizePlace,
                           bytes + static_cast<quint32>(header.size()) - riffSizePlace - 4);
    byteorder::writeLittle(header.data() + dataSizePlace, bytes);

    QStringList paths;
    QFile source(image.bin);
    openOrThrow(source, QIODevice::ReadOnly);
    for (int track = 1; track <= image.tracks; ++track) {
        QFile wave(QStringLiteral("%1/%2.wav").arg(folder).arg(track));
        openOrThrow(wave, QIODevice::WriteOnly);
        writeOrThrow(wave, header);
        for (int sector = 0; sector < image.trackSectors; sector += noteSectors)
            writeOrThrow(wave, source.read(noteSectors * sectorBytes));
        paths.append(wave.fileName());
    }
    return paths;
}
