#pragma once

#include <QList>
#include <QString>

/// One finished file that waits for its gain tags.
struct ReplayGainTrack {
    QString path;
    double gain = 0.0;    ///< dB
    double peak = 0.0;    ///< full scale is 1.0
    QList<double> blocks; ///< the gating blocks, for the album
};

/// Writes the ReplayGain tags of one closed file, by TagLib's generic property
/// map. Files whose format has no place for the keys there stay as they are.
///
/// @param albumGain  dB; not a number leaves the album keys as they stand in the file
/// @return false when the file can't be read as audio or not be saved
bool writeReplayGain(const QString& path, double trackGain, double trackPeak, double albumGain,
                     double albumPeak);

/// Tags every track with its own gain and peak and with those of the album that
/// they make up together: the gates run over all blocks as one programme. A file
/// that can't be tagged is passed over.
void writeAlbumReplayGain(const QList<ReplayGainTrack>& tracks);
