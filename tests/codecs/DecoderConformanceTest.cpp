#include "codecs/DecoderFiles.h"
#include "support/OpenFiles.h"

#include <QFile>

// The questions that every decoder must answer alike.
class DecoderConformanceTest : public EncoderTest, public ::testing::WithParamInterface<const char*> {
protected:
    QString named(const char* stem) const { return file(stem) + extension; }

    static constexpr quint64 frames = 20000;
    const QString extension = QString::fromLatin1(GetParam());
    const std::unique_ptr<IAudioDecoder> decoder = makeDecoder(toPath(named("x")));
};

TEST_P(DecoderConformanceTest, ReadsItsOwnKind)
{
    decoderfiles::make(named("a"), frames);
    const Decoded decoded = decode(named("a"));
    EXPECT_TRUE(decoded.opened);
    EXPECT_EQ(decoded.format.channels, 2);
    EXPECT_GE(decoded.frames(), frames);
    EXPECT_GT(decoded.blocks.size(), 1);
}

TEST_P(DecoderConformanceTest, TheTotalIsPresentAndNoFurtherOffThanAnEstimate)
{
    decoderfiles::make(named("a"), frames);
    const Decoded decoded = decode(named("a"));
    ASSERT_TRUE(decoded.total);
    // Of a stream without any container there is no more than an estimate, and of MP3
    // the padding behind the audio is not known.
    const double slack = extension == QStringLiteral(".aac")   ? 0.05 * frames
                         : extension == QStringLiteral(".mp3") ? 2 * 1152
                                                               : 0;
    EXPECT_NEAR(static_cast<double>(*decoded.total), static_cast<double>(decoded.frames()), slack);
}

TEST_P(DecoderConformanceTest, RefusesAMissingFileAFolderAndAnEmptyFile)
{
    const qsizetype before = openFileCount();
    EXPECT_FALSE(decoder->open(toPath(named("missing"))));
    EXPECT_FALSE(decoder->open(toPath(folder.path())));
    writeAll(named("empty"), {});
    EXPECT_FALSE(decoder->open(toPath(named("empty"))));
    EXPECT_EQ(openFileCount(), before);
    EXPECT_FALSE(decoder->read());
    decoder->close();
    EXPECT_FALSE(decoder->read());
}

TEST_P(DecoderConformanceTest, RefusesEveryOtherKindUnderItsEnding)
{
    for (const QString& other : decoderExtensions()) {
        const QStringList both{extension, other};
        const bool sameClass =
            other == extension
            || (both.contains(QStringLiteral(".aif")) && both.contains(QStringLiteral(".aiff")));
        // These are told apart by their content, whatever the ending says.
        const QStringList platform{QStringLiteral(".mp3"), QStringLiteral(".aac"), QStringLiteral(".m4a")};
        if (sameClass || (platform.contains(extension) && platform.contains(other)))
            continue;
        const QString made = file("other") + other;
        decoderfiles::make(made, 3000);
        writeAll(named("wrong"), readAll(made));
        EXPECT_FALSE(makeDecoder(toPath(named("wrong")))->open(toPath(named("wrong"))))
            << other.toStdString();
    }
}

TEST_P(DecoderConformanceTest, RefusesNoiseAndText)
{
    writeAll(named("noise"), decoderfiles::bits(30000, 77));
    EXPECT_FALSE(decoder->open(toPath(named("noise"))));
    writeAll(named("text"), QByteArray("All work and no play. ").repeated(500));
    EXPECT_FALSE(decoder->open(toPath(named("text"))));
    writeAll(named("zero"), QByteArray(30000, '\0'));
    EXPECT_FALSE(decoder->open(toPath(named("zero"))));
}

TEST_P(DecoderConformanceTest, ASecondOpenIsRefusedAndTheFirstFileGoesOn)
{
    decoderfiles::make(named("a"), frames);
    const Decoded whole = decode(named("a"));
    ASSERT_TRUE(decoder->open(toPath(named("a"))));
    auto block = decoder->read();
    ASSERT_TRUE(block);
    QList<qint32> samples = block->samples;
    EXPECT_FALSE(decoder->open(toPath(named("a"))));
    EXPECT_FALSE(decoder->open(toPath(named("missing"))));
    EXPECT_EQ(decoder->format(), whole.format);
    while ((block = decoder->read()))
        samples += block->samples;
    EXPECT_EQ(samples, whole.samples);
}

TEST_P(DecoderConformanceTest, NothingFollowsTheEnd)
{
    decoderfiles::make(named("a"), 5000);
    ASSERT_TRUE(decoder->open(toPath(named("a"))));
    while (decoder->read()) {
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(decoder->read());
    EXPECT_NE(decoder->format().sampleRate, 0u);
}

TEST_P(DecoderConformanceTest, ClosingTwiceAndReadingAfterwardsAreHarmless)
{
    const qsizetype before = openFileCount();
    decoderfiles::make(named("a"), frames);
    decoder->close();
    ASSERT_TRUE(decoder->open(toPath(named("a"))));
    ASSERT_TRUE(decoder->read());
    EXPECT_GT(openFileCount(), before);
    const AudioFormat format = decoder->format();
    decoder->close();
    decoder->close();
    EXPECT_EQ(openFileCount(), before);
    EXPECT_FALSE(decoder->read());
    EXPECT_EQ(decoder->format(), format);
}

TEST_P(DecoderConformanceTest, DestructionClosesTheFile)
{
    const qsizetype before = openFileCount();
    decoderfiles::make(named("a"), frames);
    {
        const auto other = makeDecoder(toPath(named("a")));
        ASSERT_TRUE(other->open(toPath(named("a"))));
        ASSERT_TRUE(other->read());
    }
    EXPECT_EQ(openFileCount(), before);
}

TEST_P(DecoderConformanceTest, AnyTruncationIsRefusedOrEndsAndLeavesNothingOpen)
{
    decoderfiles::make(named("a"), 8000);
    const QByteArray whole = readAll(named("a"));
    const quint64 all = decode(named("a")).frames();
    const qsizetype before = openFileCount();
    for (qsizetype part = 1; part < 24; ++part) {
        writeAll(named("cut"), whole.left(whole.size() * part / 24));
        EXPECT_LE(decode(named("cut")).frames(), all) << part;
        EXPECT_EQ(openFileCount(), before);
    }
}

TEST_P(DecoderConformanceTest, ReadsANameThatIsNotAscii)
{
    const QString name = file("\xE9\x9F\xB3\xE6\xA5\xBD 100% #1") + extension;
    decoderfiles::make(named("a"), 5000);
    ASSERT_TRUE(QFile::copy(named("a"), name));
    EXPECT_EQ(decode(name).samples, decode(named("a")).samples);
}

TEST_P(DecoderConformanceTest, TwoDecodersAtOnceDoNotDisturbEachOther)
{
    decoderfiles::make(named("a"), frames);
    const Decoded whole = decode(named("a"));
    const auto other = makeDecoder(toPath(named("a")));
    ASSERT_TRUE(decoder->open(toPath(named("a"))));
    ASSERT_TRUE(other->open(toPath(named("a"))));
    QList<qint32> first;
    QList<qint32> second;
    for (;;) {
        const auto a = decoder->read();
        const auto b = other->read();
        ASSERT_EQ(a.has_value(), b.has_value());
        if (!a)
            break;
        first += a->samples;
        second += b->samples;
    }
    EXPECT_EQ(first, whole.samples);
    EXPECT_EQ(second, whole.samples);
}

INSTANTIATE_TEST_SUITE_P(All, DecoderConformanceTest,
                         ::testing::Values(".wav", ".aiff", ".aif", ".mp3", ".flac", ".aac", ".m4a", ".ogg",
                                           ".opus", ".wv", ".dsf", ".dff"),
                         [](const auto& instance) { return std::string(instance.param + 1); });
