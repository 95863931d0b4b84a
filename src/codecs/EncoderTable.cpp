#include "codecs/AacEncoder.h"
#include "codecs/AiffEncoder.h"
#include "codecs/AlacEncoder.h"
#include "codecs/ConverterFlacEncoder.h"
#include "codecs/IAudioEncoder.h"
#include "codecs/Make.h"
#include "codecs/Mp3Encoder.h"
#include "codecs/WavEncoder.h"

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
