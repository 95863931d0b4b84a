#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// Makes CUE images at test time.

/// Seeded audio of whole sectors as little-endian 16-bit stereo: a tone with
/// noise under it, so that no two sectors are alike.
QByteArray makeAudio(int sectors, quint32 seed);

/// "MM:SS:FF" of a sector counted from the start of the file.
QString cueTime(int sector);

struct ImageTrack {
    int startSector = 0;
    QString title;
};

struct ImageDescription {
    QString album = QStringLiteral("Test Album");
    QString artist = QStringLiteral("Test Artist");
    QString year = QStringLiteral("1998");
    QString imageName = QStringLiteral("disc.bin");
    QString imageType = QStringLiteral("BINARY");
    QList<ImageTrack> tracks;
};

/// Writes bytes into a file of the folder, and returns its path.
QString writeFile(const QString& folder, const QString& name, const QByteArray& bytes);

/// Writes the image file and its sheet "disc.cue" into the folder, and returns
/// the sheet's path.
QString writeImage(const QString& folder, const ImageDescription& description, const QByteArray& image);

/// A RIFF/WAVE file around the audio, with further chunks in front of "data".
QByteArray wrapInWave(const QByteArray& audio, const QByteArray& chunksBefore = {});
