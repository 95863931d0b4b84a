#include "metadata/tags/ReplayGain.h"

#include "base/FilePath.h"
#include "metadata/LoudnessMeter.h"
#include "metadata/tags/TagStream.h"
#include "metadata/tags/TagValues.h"

#include <taglib/fileref.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/wavfile.h>

#include <algorithm>
#include <cmath>

namespace {

void setGainAndPeak(TagLib::PropertyMap& properties, const char* gainKey, double gain, const char* peakKey,
                    double peak)
{
    properties.replace(gainKey, tagText(QString::asprintf("%+.2f dB", gain)));
    properties.replace(peakKey, tagText(QString::asprintf("%.6f", peak)));
}

// Two kinds of file hold a short old tag beside the ID3v2 tag. TagLib gives it
// the whole map, where a track of "3/12" reads as 0; and on saving an MP3 file it
// fills gaps of one tag from the other, which drops a year that is no number.
// There the ID3v2 tag alone takes the map, and the old one stays as it is.
bool setAndSave(TagLib::File& file, const TagLib::PropertyMap& properties)
{
    using TagLib::MPEG::File;

    if (auto* mpeg = dynamic_cast<File*>(&file)) {
        mpeg->ID3v2Tag(true)->setProperties(properties);
        return mpeg->save(File::AllTags, File::StripOthers, TagLib::ID3v2::v4, File::DoNotDuplicate);
    }
    if (auto* wave = dynamic_cast<TagLib::RIFF::WAV::File*>(&file))
        wave->ID3v2Tag()->setProperties(properties);
    else
        file.setProperties(properties);
    return file.save();
}

} // namespace

bool writeReplayGain(const QString& path, double trackGain, double trackPeak, double albumGain,
                     double albumPeak)
{
    try {
        TagStream stream(toPath(path).c_str());
        TagLib::FileRef reference(&stream, true, TagLib::AudioProperties::Average);
        if (reference.isNull() || !reference.file())
            return false;
        TagLib::PropertyMap properties = reference.file()->properties();
        setGainAndPeak(properties, "REPLAYGAIN_TRACK_GAIN", trackGain, "REPLAYGAIN_TRACK_PEAK", trackPeak);
        if (!std::isnan(albumGain))
            setGainAndPeak(properties, "REPLAYGAIN_ALBUM_GAIN", albumGain, "REPLAYGAIN_ALBUM_PEAK",
                           albumPeak);
        return setAndSave(*reference.file(), properties);
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
