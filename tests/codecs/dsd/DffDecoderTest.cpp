#include "codecs/dsd/DffDecoder.h"

#include "codecs/DecoderFiles.h"
#include "codecs/FloatSample.h"
#include "codecs/dsd/DsdFirFilter.h"
#include "support/OpenFiles.h"

using namespace decoderfiles;

class DffDecoderTest : public EncoderTest {
protected:
    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.dff"), bytes);
        return decodeWith<DffDecoder>(file("a.dff"));
    }

    static QByteArray form(const QByteArray& chunks) { return dffChunk("FRM8", "DSD " + chunks); }
    static QByteArray properties() { return dffChunk("PROP", "SND " + dffProperties(2822400, 2)); }
};

TEST_F(DffDecoderTest, ChannelsAreInterleavedByteByByte)
{
    const QByteArray data = bits(2 * 5000, 3);
    const Decoded decoded = decodeBytes(dff(dffProperties(2822400, 2), data));
    EXPECT_EQ(decoded.format, (AudioFormat{352800, 2, 24}));
    EXPECT_EQ(decoded.total, 5000u);
    EXPECT_EQ(decoded.blocks, (QList<quint64>{4096, 904}));
    for (std::size_t channel = 0; channel < 2; ++channel) {
        DsdFirFilter filter;
        std::vector<float> values(5000);
        decodeDsdBytes(filter, reinterpret_cast<const quint8*>(data.constData()) + channel, 5000, false,
                       values.data(), 2, 1);
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_EQ(decoded.samples[static_cast<qsizetype>(2 * i + channel)], sampleFromFloat(values[i]))
                << i;
    }
}

TEST_F(DffDecoderTest, SameAudioInBothOneBitContainersGivesTheSameSamples)
{
    const QByteArray data = bits(4096, 5);
    writeAll(file("b.dsf"), dsf({.channels = 1, .bits = 8}, data));
    EXPECT_EQ(decodeBytes(dff(dffProperties(2822400, 1), data)).samples, decode(file("b.dsf")).samples);
}

TEST_F(DffDecoderTest, TheChannelIdsAreSkippedWhateverTheirNumber)
{
    const QByteArray fourIds = dffChunk("CHNL", big(quint16{2}) + "SLFTSRGTC   LFE ");
    const QByteArray rate = dffChunk("FS  ", big(quint32{2822400}));
    for (const QByteArray& order : {fourIds + rate, rate + fourIds}) {
        const Decoded decoded = decodeBytes(dff(order, bits(64, 1)));
        EXPECT_EQ(decoded.format, (AudioFormat{352800, 2, 24}));
        EXPECT_EQ(decoded.total, 32u);
    }
}

TEST_F(DffDecoderTest, WhatFollowsTheRateInItsChunkIsPassedOver)
{
    const QByteArray longRate = dffChunk("FS  ", big(quint32{2822400}) + "and more");
    const QByteArray channels = dffChunk("CHNL", big(quint16{1}) + "C   ");
    const Decoded decoded = decodeBytes(dff(longRate + channels, bits(64, 1)));
    EXPECT_EQ(decoded.format, (AudioFormat{352800, 1, 24}));
    EXPECT_EQ(decoded.total, 64u);
}

TEST_F(DffDecoderTest, TheKindOfThePropertiesIsNotLookedAt)
{
    const QByteArray sound = dffChunk("DSD ", bits(64, 1));
    const QByteArray usual = form(dffChunk("PROP", "SND " + dffProperties(2822400, 2)) + sound);
    const QByteArray other = form(dffChunk("PROP", "ABCD" + dffProperties(2822400, 2)) + sound);
    EXPECT_EQ(decodeBytes(other).frames(), 32u);
    EXPECT_EQ(decodeBytes(other).samples, decodeBytes(usual).samples);
}

TEST_F(DffDecoderTest, OddChunksArePadded)
{
    const QByteArray odd = dffChunk("ABCD", "xyz");
    const QByteArray inner = odd + dffProperties(2822400, 1) + odd;
    const QByteArray bytes =
        form(odd + dffChunk("PROP", "SND " + inner) + odd + dffChunk("DSD ", bits(9, 1)));
    EXPECT_EQ(decodeBytes(bytes).total, 9u);
}

TEST_F(DffDecoderTest, SoundMayStandBeforeTheProperties)
{
    const QByteArray data = bits(64, 2);
    const Decoded before = decodeBytes(form(dffChunk("DSD ", data) + properties()));
    EXPECT_EQ(before.frames(), 32u);
    EXPECT_EQ(before.samples, decodeBytes(form(properties() + dffChunk("DSD ", data))).samples);
}

TEST_F(DffDecoderTest, ChunksAfterTheSoundAreNotVisited)
{
    const QByteArray bytes = form(properties() + dffChunk("DSD ", bits(64, 2)) + dffChunk("DST ", "xx"));
    EXPECT_TRUE(decodeBytes(bytes).opened);
}

TEST_F(DffDecoderTest, CompressedSoundIsRefusedAndTheFileClosed)
{
    const qsizetype before = openFileCount();
    const QByteArray compressed = dffChunk("FS  ", big(quint32{2822400}))
                                  + dffChunk("CHNL", big(quint16{1}) + "C   ")
                                  + dffChunk("CMPR", QByteArray("DST \0", 5));
    writeAll(file("a.dff"), dff(compressed, bits(64, 1)));
    DffDecoder decoder;
    EXPECT_FALSE(decoder.open(toPath(file("a.dff"))));
    EXPECT_EQ(openFileCount(), before);
    EXPECT_FALSE(decodeBytes(form(properties() + dffChunk("DST ", bits(64, 1)))).opened);
}

TEST_F(DffDecoderTest, MissingRateChannelsPropertiesOrSoundAreRefused)
{
    const QByteArray rate = dffChunk("FS  ", big(quint32{2822400}));
    const QByteArray channels = dffChunk("CHNL", big(quint16{1}) + "C   ");
    EXPECT_TRUE(decodeBytes(dff(rate + channels, bits(8, 1))).opened);
    EXPECT_FALSE(decodeBytes(dff(channels, bits(8, 1))).opened);
    EXPECT_FALSE(decodeBytes(dff(rate, bits(8, 1))).opened);
    EXPECT_FALSE(decodeBytes(dff(dffProperties(0, 2), bits(8, 1))).opened);
    EXPECT_FALSE(decodeBytes(dff(dffProperties(2822400, 0), bits(8, 1))).opened);
    EXPECT_FALSE(decodeBytes(form(properties())).opened);
    EXPECT_FALSE(decodeBytes(form(dffChunk("DSD ", bits(8, 1)))).opened);
}

TEST_F(DffDecoderTest, ATruncatedFileEndsInOneBitZeroesUpToItsLength)
{
    QByteArray whole = dff(dffProperties(2822400, 1), bits(192, 7));
    const Decoded decoded = decodeBytes(whole.left(whole.size() - 128));
    EXPECT_EQ(decoded.frames(), 192u);
    EXPECT_EQ(decoded.samples.last(), INT32_MIN);
}

TEST_F(DffDecoderTest, EveryHeaderCutShortIsRefused)
{
    const QByteArray whole = dff(dffProperties(2822400, 2), {});
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decodeBytes(whole.left(length)).opened) << length;
    for (const int place : {0, 12})
        EXPECT_FALSE(decodeBytes(whole.left(place) + "ZZZZ" + whole.mid(place + 4)).opened) << place;
}

TEST_F(DffDecoderTest, SizesThatNoFileHasEndTheWalk)
{
    for (const quint64 size : {quint64{0x7FFFFFFFFFFFFFFF}, quint64{1} << 63, ~quint64{0}}) {
        const QByteArray sound = "DSD " + big(size) + bits(64, 1);
        const Decoded behind = decodeBytes("FRM8" + big(size) + "DSD " + "ABCD" + big(size) + sound);
        EXPECT_FALSE(behind.opened);
        // With everything seen, the size of the sound is believed.
        writeAll(file("b.dff"), "FRM8" + big(size) + "DSD " + properties() + sound);
        DffDecoder decoder;
        ASSERT_TRUE(decoder.open(toPath(file("b.dff"))));
        EXPECT_EQ(decoder.totalFrames(), size / 2);
        EXPECT_EQ(decoder.read()->frames, 4096u);
    }
}
