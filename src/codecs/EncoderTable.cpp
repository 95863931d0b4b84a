#include "codecs/AacEncoder.h"
#include "codecs/AiffEncoder.h"
#include "codecs/AlacEncoder.h"
#include "codecs/ConverterFlacEncoder.h"
#include "codecs/IAudioEncoder.h"
#include "codecs/Mp3Encoder.h"
#include "codecs/WavEncoder.h"

namespace {

using EncoderMaker = std::unique_ptr<IAudioEncoder> (*)();

template <typename Encoder>
std::unique_ptr<IAudioEncoder> make()
{
    return std::make_unique<Encoder>();
}

struct EncoderEntry {
    EncoderId id;
    EncoderMaker make;
};

constexpr EncoderEntry encoderTable[] = {
    {WavEncoderId, make<WavEncoder>},   {FlacEncoderId, make<ConverterFlacEncoder>},
    {Mp3EncoderId, make<Mp3Encoder>},   {AiffEncoderId, make<AiffEncoder>},
    {AacEncoderId, make<AacEncoder>},   {AlacEncoderId, make<AlacEncoder>},
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
