#include "codecs/media/AacDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

class AacDecoderTest : public EncoderTest {
protected:
    void convert(const QStringList& options, const QString& name) const
    {
        const ToolResult made = runTool(QStringLiteral("ffmpeg"),
                                        QStringList{QStringLiteral("-v"), QStringLiteral("error"),
                                                    QStringLiteral("-y"), QStringLiteral("-i"), file("s.wav")}
                                            + options + QStringList{name});
        ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    }

    // Grows every box around the file's last tag list and puts a tag behind its others.
    static QByteArray withGaplessTag(QByteArray bytes, quint32 delay, quint32 padding, quint64 frames)
    {
        const QByteArray text = QStringLiteral(" 00000000 %1 %2 %3")
                                    .arg(delay, 8, 16, QLatin1Char('0'))
                                    .arg(padding, 8, 16, QLatin1Char('0'))
                                    .arg(frames, 16, 16, QLatin1Char('0'))
                                    .toUpper()
                                    .toLatin1();
        const auto box = [](const char* id, const QByteArray& body) {
            return big(static_cast<quint32>(body.size() + 8)) + id + body;
        };
        const QByteArray tag = box("----", box("mean", QByteArray(4, '\0') + "com.apple.iTunes")
                                               + box("name", QByteArray(4, '\0') + "iTunSMPB")
                                               + box("data", big(quint32{1}) + QByteArray(4, '\0') + text));
        for (const char* id : {"moov", "udta", "meta", "ilst"}) {
            const qsizetype place = bytes.lastIndexOf(id) - 4;
            const auto size = byteorder::readBig<quint32>(bytes.constData() + place);
            EXPECT_EQ(place + size, bytes.size()) << id;
            bytes.replace(place, 4, big(static_cast<quint32>(size + tag.size())));
        }
        return bytes + tag;
    }
};

TEST_F(AacDecoderTest, DelayAndPaddingOfMpeg4AreCutAndTheSamplesLineUp)
{
    for (const quint16 channels : {quint16{1}, quint16{2}, quint16{6}}) {
        const QList<qint32> source = decoderfiles::audio(54441, channels);
        writeAll(file("s.wav"), waveFile({44100, channels, 16}, source));
        convert(
            {QStringLiteral("-c:a"), QStringLiteral("aac"), QStringLiteral("-b:a"), QStringLiteral("320k")},
            file("a.m4a"));
        const Decoded decoded = decode(file("a.m4a"));
        EXPECT_EQ(decoded.format, (AudioFormat{44100, channels, 24}));
        EXPECT_EQ(decoded.frames(), 54441u);
        EXPECT_EQ(decoded.total, 54441u);
        // The judge does not cut the padding.
        QList<qint32> judge = decodeWithFfmpeg(file("a.m4a"));
        judge.resize(decoded.samples.size());
        EXPECT_LE(largestDifference(decoded.samples, judge, 24), 1.0);
        // Against what was encoded, one sample of misalignment would be many times as much.
        // The low channel of six is not encoded beyond 120 Hz.
        if (channels <= 2) {
            EXPECT_LE(largestDifference(decoded.samples.mid(5000), source.mid(5000), 16), 1000.0);
        }
    }
}

TEST_F(AacDecoderTest, StreamsWithoutAContainerAreDeliveredWhole)
{
    writeAll(file("s.wav"), waveFile({48000, 2, 16}, decoderfiles::audio(54441, 2)));
    convert({}, file("a.aac"));
    const Decoded decoded = decode(file("a.aac"));
    EXPECT_EQ(decoded.format, (AudioFormat{48000, 2, 24}));
    EXPECT_EQ(decoded.frames() % 1024, 0u);
    EXPECT_GE(decoded.frames(), 54441u + 1024);
    EXPECT_LE(largestDifference(decoded.samples, decodeWithFfmpeg(file("a.aac")), 24), 1.0);
}

TEST_F(AacDecoderTest, TheGaplessTagOfPlayersGivesDelayAndLength)
{
    writeAll(file("s.wav"), waveFile({44100, 2, 16}, decoderfiles::audio(50000, 2)));
    convert({QStringLiteral("-use_editlist"), QStringLiteral("0")}, file("plain.m4a"));
    const Decoded plain = decode(file("plain.m4a"));
    ASSERT_GT(plain.frames(), 50000u);
    writeAll(file("a.m4a"), withGaplessTag(readAll(file("plain.m4a")), 1024, 176, 49000));
    const Decoded decoded = decode(file("a.m4a"));
    EXPECT_EQ(decoded.frames(), 49000u);
    EXPECT_EQ(decoded.total, 49000u);
    EXPECT_EQ(decoded.samples, plain.samples.mid(2 * 1024, 2 * 49000));
}

TEST_F(AacDecoderTest, EveryLengthAroundAPacketIsExact)
{
    for (quint64 frames = 20 * 1024 - 1030; frames < 20 * 1024 + 1030; frames += 103) {
        writeAll(file("s.wav"), waveFile({44100, 1, 16}, decoderfiles::audio(frames, 1)));
        convert({}, file("a.m4a"));
        const Decoded decoded = decode(file("a.m4a"));
        EXPECT_EQ(decoded.frames(), frames);
        EXPECT_EQ(decoded.total, frames);
    }
}

TEST_F(AacDecoderTest, AnEditListThatEndsWithinThePacketsIsKeptTo)
{
    writeAll(file("s.wav"), waveFile({44100, 1, 16}, decoderfiles::audio(44100, 1)));
    convert({QStringLiteral("-c:a"), QStringLiteral("alac")}, file("a.m4a"));
    const Decoded whole = decode(file("a.m4a"));
    QByteArray bytes = readAll(file("a.m4a"));
    // Version and flags, one entry, its length in thousandths, its start.
    const qsizetype entry = bytes.indexOf("elst") + 12;
    ASSERT_EQ(bytes.mid(entry, 8), big(quint32{1000}) + big(quint32{0}));
    bytes.replace(entry, 8, big(quint32{700}) + big(quint32{4410}));
    writeAll(file("b.m4a"), bytes);
    const Decoded edited = decode(file("b.m4a"));
    EXPECT_EQ(edited.total, 30870u);
    EXPECT_EQ(edited.samples, whole.samples.mid(4410, 30870));
}

// The second one is the better one, and is marked as the one to play.
TEST_F(AacDecoderTest, TheFirstOfTwoTracksIsPlayedWithItsOwnEditList)
{
    const QList<qint32> source = decoderfiles::audio(88200, 1);
    writeAll(file("s.wav"), waveFile({44100, 1, 16}, source));
    writeAll(file("t.wav"), waveFile({48000, 2, 16}, decoderfiles::audio(30000, 2)));
    for (const char* codec : {"alac", "aac"}) {
        convert({QStringLiteral("-i"), file("t.wav"), QStringLiteral("-map"), QStringLiteral("0"),
                 QStringLiteral("-map"), QStringLiteral("1"), QStringLiteral("-c:a"),
                 QString::fromLatin1(codec), QStringLiteral("-b:a"), QStringLiteral("320k"),
                 QStringLiteral("-disposition:a:0"), QStringLiteral("0"), QStringLiteral("-disposition:a:1"),
                 QStringLiteral("default")},
                file("a.m4a"));
        const Decoded decoded = decode(file("a.m4a"));
        EXPECT_EQ(decoded.format.sampleRate, 44100u) << codec;
        EXPECT_EQ(decoded.format.channels, 1) << codec;
        EXPECT_EQ(decoded.frames(), 88200u) << codec;
        EXPECT_EQ(decoded.total, 88200u) << codec;
        EXPECT_LE(largestDifference(decoded.samples.mid(5000), source.mid(5000), 16), 1000.0) << codec;
    }
}

TEST_F(AacDecoderTest, ASourceWithoutAudioIsRefused)
{
    const ToolResult made =
        runTool(QStringLiteral("ffmpeg"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                 QStringLiteral("-i"), QStringLiteral("testsrc=duration=1:size=64x64"),
                 QStringLiteral("-c:v"), QStringLiteral("mpeg4"), file("a.mp4")});
    ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    EXPECT_FALSE(decodeWith<AacDecoder>(file("a.mp4")).opened);
}

TEST_F(AacDecoderTest, AudioOfAnotherCodecInMpeg4IsRefused)
{
    writeAll(file("s.wav"), waveFile({44100, 2, 16}, decoderfiles::audio(20000, 2)));
    convert({QStringLiteral("-c:a"), QStringLiteral("ac3"), QStringLiteral("-f"), QStringLiteral("mp4")},
            file("a.m4a"));
    EXPECT_FALSE(decode(file("a.m4a")).opened);
}

TEST_F(AacDecoderTest, ATruncatedStreamEndsEarly)
{
    writeAll(file("s.wav"), waveFile({44100, 2, 16}, decoderfiles::audio(200000, 2)));
    convert({}, file("a.aac"));
    const QByteArray whole = readAll(file("a.aac"));
    writeAll(file("b.aac"), whole.left(whole.size() / 2));
    const Decoded cut = decode(file("b.aac"));
    EXPECT_GT(cut.frames(), 50000u);
    EXPECT_LT(cut.frames(), 150000u);
}

class AlacTest : public AacDecoderTest, public ::testing::WithParamInterface<AudioFormat> {};

TEST_P(AlacTest, DecodesBitForBit)
{
    const AudioFormat format = GetParam();
    for (const quint64 frames : {quint64{1}, quint64{4096}, quint64{54441}}) {
        // The encoder at hand fails on six channels of noise, and of a single frame.
        if (format.channels > 2 && frames == 1)
            continue;
        const QList<qint32> source = format.channels <= 2 ? audiomaker::noise(frames * format.channels, 11)
                                                          : decoderfiles::audio(frames, format.channels);
        writeAll(file("s.wav"), waveFile(format, source));
        convert({QStringLiteral("-c:a"), QStringLiteral("alac")}, file("a.m4a"));
        const Decoded decoded = decode(file("a.m4a"));
        EXPECT_EQ(decoded.format, format);
        EXPECT_EQ(decoded.samples, keepBits(source, format.bitsPerSample));
        EXPECT_EQ(decoded.samples, decodeWithFfmpeg(file("a.m4a")));
    }
}

INSTANTIATE_TEST_SUITE_P(Widths, AlacTest,
                         ::testing::Values(AudioFormat{44100, 1, 16}, AudioFormat{44100, 2, 16},
                                           AudioFormat{44100, 6, 16}, AudioFormat{48000, 1, 24},
                                           AudioFormat{96000, 2, 24}, AudioFormat{44100, 6, 24}));
