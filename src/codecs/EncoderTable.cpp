#include "codecs/IAudioEncoder.h"
#include "codecs/Make.h"
#include "codecs/flac/ConverterFlacEncoder.h"
#include "codecs/media/AacEncoder.h"
#include "codecs/media/AlacEncoder.h"
#include "codecs/mp3/Mp3Encoder.h"
#include "codecs/pcm/AiffEncoder.h"
#include "codecs/pcm/WavEncoder.h"

namespace {

using EncoderMaker = std::unique_ptr<IAudioEncoder> (*)();

template<typename Encoder>
constexpr EncoderMaker maker = make<IAudioEncoder, Encoder>;

struct EncoderEntry {
    EncoderId id;
    EncoderMaker make;
};

constexpr EncoderEntry encoderTable[] = {
    {WavEncoderId, maker<WavEncoder>}, {FlacEncoderId, maker<ConverterFlacEncoder>},
    {Mp3EncoderId, maker<Mp3Encoder>}, {AiffEncoderId, maker<AiffEncoder>},
    {AacEncoderId, maker<AacEncoder>}, {AlacEncoderId, maker<AlacEncoder>},
};

} // namespace

std::unique_ptr<IAudioEncoder> makeEncoder(EncoderId id)
{
    for (const EncoderEntry& entry : encoderTable) {
        if (entry.id == id)
            return entry.make();
    }
    return nullptr;
}
