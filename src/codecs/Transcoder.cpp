#include "codecs/Transcoder.h"

#include "codecs/IAudioDecoder.h"
#include "codecs/NoThrow.h"
#include "codecs/Oversampler.h"
#include "metadata/LoudnessMeter.h"

namespace {

/// The stages between the two ends, each there only when asked for.
struct Stages {
    std::unique_ptr<Oversampler> oversampler;
    std::unique_ptr<LoudnessMeter> meter;
};

bool passOn(const AudioBlock& block, Stages& stages, IAudioEncoder& encoder)
{
    if (stages.meter)
        stages.meter->add(block.samples.constData(), block.frames);
    return encoder.write(stages.oversampler ? stages.oversampler->run(block) : block);
}

bool passAllOn(IAudioDecoder& decoder, Stages& stages, IAudioEncoder& encoder)
{
    while (const std::optional<AudioBlock> block = decoder.read()) {
        if (conversionsAreStopped || !passOn(*block, stages, encoder))
            return false;
    }
    return true;
}

void takeResults(LoudnessMeter& meter, TrackGain& gain)
{
    meter.finish();
    gain.gain = replayGainFor(meter.gatedLoudness());
    gain.peak = meter.peak;
    gain.blocks = meter.gated;
}

bool convertOpened(IAudioDecoder& decoder, IAudioEncoder& encoder, const std::filesystem::path& target,
                   quint32 oversampleFactor, TrackGain* gain)
{
    Stages stages;
    const AudioFormat decoded = decoder.format();
    AudioFormat format = decoded;
    if (oversampleFactor >= 2) {
        stages.oversampler = std::make_unique<Oversampler>(format.channels, oversampleFactor);
        format.sampleRate *= oversampleFactor;
    }
    if (!encoder.open(target, format))
        return false;
    // Whatever happens from here on, the target is closed.
    const bool written = withoutThrowing([&] {
        if (gain && gain->enabled)
            stages.meter = std::make_unique<LoudnessMeter>(decoded.sampleRate, decoded.channels);
        return passAllOn(decoder, stages, encoder);
    });
    const bool completed = encoder.close();
    if (stages.meter)
        takeResults(*stages.meter, *gain);
    return written && completed;
}

} // namespace

bool convertFile(const std::filesystem::path& source, const std::filesystem::path& target, EncoderId id,
                 quint32 oversampleFactor, TrackGain* gain)
{
    return withoutThrowing([&] {
        const std::unique_ptr<IAudioDecoder> decoder = makeDecoder(source);
        if (!decoder || !decoder->open(source))
            return false;
        const std::unique_ptr<IAudioEncoder> encoder = makeEncoder(id);
        const bool converted = encoder && convertOpened(*decoder, *encoder, target, oversampleFactor, gain);
        decoder->close();
        return converted;
    });
}
