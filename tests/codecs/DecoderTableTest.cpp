#include "codecs/dsd/DffDecoder.h"
#include "codecs/dsd/DsfDecoder.h"
#include "codecs/flac/FlacDecoder.h"
#include "codecs/media/AacDecoder.h"
#include "codecs/mp3/Mp3Decoder.h"
#include "codecs/ogg/OggDecoder.h"
#include "codecs/ogg/OpusDecoder.h"
#include "codecs/pcm/AiffDecoder.h"
#include "codecs/pcm/WavDecoder.h"
#include "codecs/wavpack/WavPackDecoder.h"
#include "support/NameOfBytes.h"

#include <gtest/gtest.h>

template<typename Decoder>
static bool makes(const std::filesystem::path& path)
{
    return dynamic_cast<Decoder*>(makeDecoder(path).get()) != nullptr;
}

TEST(DecoderTable, EachEndingMakesItsClass)
{
    EXPECT_TRUE(makes<WavDecoder>("a.wav"));
    EXPECT_TRUE(makes<Mp3Decoder>("a.mp3"));
    EXPECT_TRUE(makes<FlacDecoder>("a.flac"));
    EXPECT_TRUE(makes<OggDecoder>("a.ogg"));
    EXPECT_TRUE(makes<OpusDecoder_>("a.opus"));
    EXPECT_TRUE(makes<WavPackDecoder>("a.wv"));
    EXPECT_TRUE(makes<DsfDecoder>("a.dsf"));
    EXPECT_TRUE(makes<DffDecoder>("a.dff"));
}

TEST(DecoderTable, BothEndingsOfAiffAndOfAacMakeOneClass)
{
    EXPECT_TRUE(makes<AiffDecoder>("a.aiff"));
    EXPECT_TRUE(makes<AiffDecoder>("a.aif"));
    EXPECT_TRUE(makes<AacDecoder>("a.aac"));
    EXPECT_TRUE(makes<AacDecoder>("a.m4a"));
}

TEST(DecoderTable, CapitalsMakeTheSameClass)
{
    EXPECT_TRUE(makes<WavDecoder>("SONG.WAV"));
    EXPECT_TRUE(makes<OpusDecoder_>("Song.OpUs"));
}

TEST(DecoderTable, NoDotALoneDotAndAnUnknownEndingMakeNothing)
{
    for (const char* path : {"", "song", "song.", ".", "a.mp4", "a.wav ", "a.wave", "wav", "a.wav.txt"})
        EXPECT_EQ(makeDecoder(path), nullptr) << path;
}

TEST(DecoderTable, OnlyTheLastDotCounts)
{
    EXPECT_TRUE(makes<WavDecoder>("a.flac.wav"));
    EXPECT_TRUE(makes<WavDecoder>(".wav"));
}

TEST(DecoderTable, ADotInTheFolderOfANamelessKindMatchesNothing)
{
    EXPECT_EQ(makeDecoder("music.wav/song"), nullptr);
    EXPECT_EQ(makeDecoder("music.flac/song"), nullptr);
}

TEST(DecoderTable, ANameThatIsNoTextStillHasItsEnding)
{
    EXPECT_TRUE(makes<WavDecoder>(nameOfBytes("\xE9t\xE9.wav")));
    EXPECT_EQ(makeDecoder(nameOfBytes("song.\xE9\xFF")), nullptr);
}

TEST(DecoderTable, AnUnopenedDecoderReportsCompactDisc)
{
    for (const QString& extension : decoderExtensions()) {
        const auto decoder = makeDecoder("a" + extension.toStdString());
        ASSERT_NE(decoder, nullptr);
        EXPECT_EQ(decoder->format(), (AudioFormat{44100, 2, 16})) << extension.toStdString();
        EXPECT_FALSE(decoder->read()) << extension.toStdString();
    }
}

TEST(DecoderTable, TwelveEndingsAreKnown)
{
    EXPECT_EQ(decoderExtensions().size(), 12);
    EXPECT_EQ(decoderExtensions().first(), QStringLiteral(".wav"));
    EXPECT_EQ(decoderExtensions().last(), QStringLiteral(".dff"));
}
