#include "codecs/ogg/OggDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/Tool.h"

#include <algorithm>

class OggDecoderTest : public EncoderTest {
protected:
    QByteArray encoded(quint64 frames, quint16 channels = 2)
    {
        decoderfiles::encode(file("s.ogg"), {44100, channels, 16}, decoderfiles::audio(frames, channels));
        return readAll(file("s.ogg"));
    }

    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.ogg"), bytes);
        return decodeWith<OggDecoder>(file("a.ogg"));
    }

    QList<qint32> judge() const
    {
        const ToolResult made =
            runTool(QStringLiteral("oggdec"), {QStringLiteral("-Q"), QStringLiteral("-R"),
                                               QStringLiteral("-o"), file("judge.raw"), file("a.ogg")});
        EXPECT_TRUE(made.ok()) << made.errors.toStdString();
        return fromRaw16(readAll(file("judge.raw")));
    }
};

class OggChannelsTest : public OggDecoderTest, public ::testing::WithParamInterface<quint16> {};

TEST_P(OggChannelsTest, AgreesWithAnIndependentDecoderToTheSample)
{
    const quint16 channels = GetParam();
    for (const quint64 frames : {quint64{1}, quint64{4096}, quint64{54321}}) {
        const Decoded decoded = decodeBytes(encoded(frames, channels));
        EXPECT_EQ(decoded.format, (AudioFormat{44100, channels, 16}));
        EXPECT_EQ(decoded.total, frames);
        EXPECT_EQ(decoded.frames(), frames);
        // Of more channels this judge makes a mess of its own.
        if (channels <= 2) {
            EXPECT_LE(largestDifference(decoded.samples, judge(), 16), toolsShareOurLibrary() ? 0.0 : 1.0);
        }
        // The other one does not keep to the length.
        const QList<qint32> all = decodeWithFfmpeg(file("a.ogg"));
        const qsizetype both = std::min(decoded.samples.size(), all.size());
        EXPECT_GE(both, decoded.samples.size() - 128 * channels);
        EXPECT_LE(largestDifference(decoded.samples.first(both), all.first(both), 16), 1.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, OggChannelsTest, ::testing::Range<quint16>(1, 9));

TEST_F(OggDecoderTest, AFileWithoutAudioHasNoTotal)
{
    const Decoded decoded = decodeBytes(encoded(0));
    EXPECT_TRUE(decoded.opened);
    EXPECT_EQ(decoded.total, std::nullopt);
    EXPECT_EQ(decoded.frames(), 0u);
}

TEST_F(OggDecoderTest, OpusInOggIsRefused)
{
    decoderfiles::make(file("a.opus"), 5000);
    EXPECT_FALSE(decodeBytes(readAll(file("a.opus"))).opened);
}

TEST_F(OggDecoderTest, LongTagsAreNoConcern)
{
    const Decoded plain = decodeBytes(encoded(20000));
    writeAll(file("tags"), "TITLE=" + QByteArray(200000, 'x') + "\n");
    const ToolResult tagged =
        runTool(QStringLiteral("vorbiscomment"),
                {QStringLiteral("-w"), QStringLiteral("-c"), file("tags"), file("a.ogg")});
    ASSERT_TRUE(tagged.ok()) << tagged.errors.toStdString();
    EXPECT_EQ(decode(file("a.ogg")).samples, plain.samples);
}
