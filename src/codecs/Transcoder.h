#pragma once

#include "codecs/IAudioEncoder.h"

#include <QList>

#include <atomic>
#include <filesystem>

/// Asks convertFile for a loudness measurement, and takes its results.
struct TrackGain {
    bool enabled = false;
    double gain = 0.0;    ///< dB to the reference loudness
    double peak = 0.0;    ///< full scale is 1.0
    QList<double> blocks; ///< the gating blocks, for the album
};

/// Decodes a whole file and encodes it anew, block by block; tags are not
/// carried over. A source that is damaged in the middle gives a shorter file.
///
/// @param oversampleFactor  2 and above raise the sample rate by it
/// @param gain              may be null; the decoded audio is what is measured
/// @return true when the target is complete. After false it may be there in
///         part, and the caller removes it
bool convertFile(const std::filesystem::path& source, const std::filesystem::path& target, EncoderId id,
                 quint32 oversampleFactor, TrackGain* gain);

/// While it is set, from any thread or by the handler of a signal, convertFile gives up
/// before its next block: for the end of the program, which cannot wait for a long file.
inline constinit std::atomic<bool> conversionsAreStopped = false;
