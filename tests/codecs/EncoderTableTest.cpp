#include "codecs/EncoderOptions.h"
#include "codecs/EncoderRun.h"
#include "codecs/flac/ConverterFlacEncoder.h"
#include "codecs/media/AacEncoder.h"
#include "codecs/media/AlacEncoder.h"
#include "codecs/mp3/Mp3Encoder.h"
#include "codecs/pcm/AiffEncoder.h"
#include "codecs/pcm/WavEncoder.h"

template<typename Encoder>
static bool makes(int id)
{
    return dynamic_cast<Encoder*>(makeEncoder(static_cast<EncoderId>(id)).get()) != nullptr;
}

TEST(EncoderTable, EachNumberMakesItsClass)
{
    EXPECT_TRUE(makes<WavEncoder>(0));
    EXPECT_TRUE(makes<ConverterFlacEncoder>(1));
    EXPECT_TRUE(makes<Mp3Encoder>(2));
    EXPECT_TRUE(makes<AiffEncoder>(3));
    EXPECT_TRUE(makes<AacEncoder>(4));
    EXPECT_TRUE(makes<AlacEncoder>(5));
}

TEST(EncoderTable, AnyOtherNumberMakesNothing)
{
    for (const int id : {-1, 6, 7, 255, 2147483647})
        EXPECT_EQ(makeEncoder(static_cast<EncoderId>(id)), nullptr) << id;
}

TEST(EncoderTable, FormatDefaultsToCompactDisc)
{
    EXPECT_EQ(AudioFormat(), (AudioFormat{44100, 2, 16}));
}

TEST(EncoderTable, OptionsStandAtTheirFixedValues)
{
    EXPECT_EQ(encoderOptions.flacCompressionLevel, 5);
    EXPECT_FALSE(encoderOptions.mp3UseVbr);
    EXPECT_FALSE(encoderOptions.replayGainEnabled);
}
