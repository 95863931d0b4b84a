#pragma once

#include <QByteArray>
#include <QString>

/// Whether a FLAC, WAV or MP3 file holds the audio whole, by independent programs: of
/// an MP3 file the length, and hardly any noise beside it.
///
/// @param audio  little-endian 16-bit stereo
/// @return what is wrong with the file; empty when it is whole
QString faultOf(const QString& path, const QByteArray& audio);
