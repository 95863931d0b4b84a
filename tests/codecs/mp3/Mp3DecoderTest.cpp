#include "codecs/mp3/Mp3Decoder.h"

#include "codecs/DecoderFiles.h"
#include "support/Tool.h"

class Mp3DecoderTest : public EncoderTest {
protected:
    void encode(const QString& name, quint64 frames, quint16 channels, const QStringList& options)
    {
        writeAll(file("s.wav"), waveFile({44100, channels, 16}, decoderfiles::audio(frames, channels)));
        const ToolResult made =
            runTool(QStringLiteral("lame"),
                    QStringList{QStringLiteral("--quiet")} + options + QStringList{file("s.wav"), name});
        ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    }

    QList<qint32> judge(const QString& name) const
    {
        const ToolResult made =
            runTool(QStringLiteral("lame"), {QStringLiteral("--quiet"), QStringLiteral("--decode"),
                                             QStringLiteral("-t"), name, file("judge.raw")});
        EXPECT_TRUE(made.ok()) << made.errors.toStdString();
        return fromRaw16(readAll(file("judge.raw")));
    }
};

TEST_F(Mp3DecoderTest, DelayAndPaddingAreCutAndTheSamplesLineUp)
{
    for (const auto& options : {QStringList{QStringLiteral("-b192")}, QStringList{QStringLiteral("-V2")}}) {
        for (const quint16 channels : {quint16{1}, quint16{2}}) {
            for (const quint64 frames : {quint64{1152}, quint64{44100}, quint64{54441}, quint64{55000}}) {
                encode(file("a.mp3"), frames, channels, options);
                const Decoded decoded = decode(file("a.mp3"));
                EXPECT_EQ(decoded.format, (AudioFormat{44100, channels, 24}));
                EXPECT_EQ(decoded.frames(), frames);
                // The padding is not known beforehand.
                EXPECT_GE(decoded.total.value_or(0), frames);
                EXPECT_LE(decoded.total.value_or(0), frames + 2 * 1152);
                // The judge rounds to 16 bits, which is half a step.
                EXPECT_LE(largestDifference(decoded.samples, judge(file("a.mp3")), 16), 1.1);
                EXPECT_LE(largestDifference(decoded.samples, decodeWithFfmpeg(file("a.mp3")), 24), 1.0);
            }
        }
    }
}

TEST_F(Mp3DecoderTest, WithoutTheEncodersTagEverythingIsDelivered)
{
    encode(file("a.mp3"), 50000, 2, {QStringLiteral("-t"), QStringLiteral("-b192")});
    const Decoded decoded = decode(file("a.mp3"));
    EXPECT_EQ(decoded.frames() % 1152, 0u);
    EXPECT_GE(decoded.frames(), 50000u + 528);
    EXPECT_TRUE(decoded.total);
}

TEST_F(Mp3DecoderTest, OtherRatesAndLayersOfTheFamily)
{
    for (const char* rate : {"48", "32", "22.05", "16", "8"}) {
        encode(file("a.mp3"), 44100, 1,
               {QStringLiteral("--resample"), QString::fromLatin1(rate), QStringLiteral("-V5")});
        const Decoded decoded = decode(file("a.mp3"));
        EXPECT_EQ(decoded.format.sampleRate,
                  static_cast<quint32>(QString::fromLatin1(rate).toDouble() * 1000));
        EXPECT_LE(largestDifference(decoded.samples, decodeWithFfmpeg(file("a.mp3")), 24), 1.0) << rate;
    }
}

TEST_F(Mp3DecoderTest, ATruncatedFileEndsEarly)
{
    encode(file("a.mp3"), 200000, 2, {QStringLiteral("-b192")});
    const QByteArray whole = readAll(file("a.mp3"));
    const Decoded all = decode(file("a.mp3"));
    writeAll(file("b.mp3"), whole.left(whole.size() / 2));
    const Decoded cut = decode(file("b.mp3"));
    EXPECT_GT(cut.frames(), 80000u);
    EXPECT_LT(cut.frames(), 110000u);
    EXPECT_EQ(cut.samples.mid(0, 100000), all.samples.mid(0, 100000));
}

TEST_F(Mp3DecoderTest, DamageInTheMiddleIsAGapAndNotTheEnd)
{
    encode(file("a.mp3"), 200000, 2, {QStringLiteral("-b192")});
    QByteArray bytes = readAll(file("a.mp3"));
    bytes.replace(bytes.size() / 2, 3000, QByteArray(3000, '\0'));
    writeAll(file("b.mp3"), bytes);
    const Decoded damaged = decode(file("b.mp3"));
    EXPECT_GT(damaged.frames(), 150000u);
}

TEST_F(Mp3DecoderTest, APlayListOrAnAddressIsNotFollowed)
{
    encode(file("a.mp3"), 50000, 2, {});
    writeAll(file("list.mp3"), "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\na.mp3\n#EXT-X-ENDLIST\n");
    EXPECT_FALSE(decode(file("list.mp3")).opened);
    writeAll(file("concat.mp3"), "ffconcat version 1.0\nfile a.mp3\n");
    EXPECT_FALSE(decode(file("concat.mp3")).opened);
    Mp3Decoder decoder;
    EXPECT_FALSE(decoder.open("concat:" + file("a.mp3").toStdString()));
}

TEST_F(Mp3DecoderTest, AFileWhoseNameLooksLikeAnAddressIsOpened)
{
    encode(file("concat:a.mp3"), 50000, 2, {});
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(toPath(file("concat:a.mp3")).parent_path());
    Mp3Decoder decoder;
    const bool opened = decoder.open("concat:a.mp3");
    std::filesystem::current_path(before);
    EXPECT_TRUE(opened);
}
