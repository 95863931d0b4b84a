#pragma once

#include <QString>
#include <QStringList>

/// A CUE image of music-like audio, made piece by piece: tones with partials that
/// fade from note to note, spread over both channels, over a quiet noise.
struct MusicImage {
    QString cue;
    QString bin;
    int trackSectors = 0; ///< all tracks are of one length
    int tracks = 0;

    qint64 trackBytes() const;
};

/// Throws std::runtime_error when the disk doesn't take it.
MusicImage makeMusicImage(const QString& folder, int minutes, int tracks);

/// Each track of the image as a WAV file of its own; the paths, in order.
QStringList writeTrackWaves(const MusicImage& image, const QString& folder);
