#include "metadata/ReplayGain.h"

#include "metadata/LoudnessMeter.h"
#include "metadata/TagStream.h"

#include <QFile>

#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

void setGainAndPeak(TagLib::PropertyMap& properties, const char* gainKey, double gain, const char* peakKey,
                    double peak)
{
    const auto value = [](const QString& text) {
        return TagLib::StringList(TagLib::String(text.toStdString(), TagLib::String::UTF8));
    };
    properties.replace(gainKey, value(QString::asprintf("%+.2f dB", gain)));
    properties.replace(peakKey, value(QString::asprintf("%.6f", peak)));
}

} // namespace

bool writeReplayGain(const QString& path, double trackGain, double trackPeak, double albumGain, double albumPeak)
{
    try {
        TagStream stream(QFile::encodeName(path).constData());
        TagLib::FileRef reference(&stream, true, TagLib::AudioProperties::Average);
        if (reference.isNull() || !reference.file())
            return false;
        TagLib::PropertyMap properties = reference.file()->properties();
        setGainAndPeak(properties, "REPLAYGAIN_TRACK_GAIN", trackGain, "REPLAYGAIN_TRACK_PEAK", trackPeak);
        if (!std::isnan(albumGain))
            setGainAndPeak(properties, "REPLAYGAIN_ALBUM_GAIN", albumGain, "REPLAYGAIN_ALBUM_PEAK", albumPeak);
        reference.file()->setProperties(properties);
        return reference.file()->save();
    } catch (...) {
        return false;
    }
}

void writeAlbumReplayGain(const QList<ReplayGainTrack>& tracks)
{
    QList<double> blocks;
    double peak = 0.0;
    for (const ReplayGainTrack& track : tracks) {
        blocks += track.blocks;
        peak = std::max(peak, track.peak);
    }
    const double gain = replayGainFor(integratedLoudness(blocks));
    for (const ReplayGainTrack& track : tracks)
        writeReplayGain(track.path, track.gain, track.peak, gain, peak);
}
