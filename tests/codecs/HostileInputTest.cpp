#include "codecs/DecoderFiles.h"
#include "codecs/ogg/ChainFile.h"
#include "support/Tool.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <ostream>

// Broken files through every decoder, in a child process with a limit on memory
// and on time. TARVEL_MUTATIONS sets their number.
class HostileInputTest : public EncoderTest {
protected:
    static quint64 mutations()
    {
        bool given = false;
        const quint64 count = qEnvironmentVariable("TARVEL_MUTATIONS").toULongLong(&given);
        return given ? count : 250;
    }

    static QProcessEnvironment limits()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           QStringLiteral("detect_leaks=0:hard_rss_limit_mb=2048:max_allocation_size_mb=300:"
                                          "allocator_may_return_null=0:abort_on_error=0"));
        environment.insert(QStringLiteral("UBSAN_OPTIONS"), QStringLiteral("halt_on_error=1"));
        return environment;
    }

    /// What the child printed in a run without a fault.
    static QByteArray runChild(const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(limits());
        process.start(QStringLiteral(TARVEL_DECODE_MUTANTS), arguments);
        EXPECT_TRUE(process.waitForFinished(-1));
        const QByteArray output = process.readAllStandardOutput();
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 0)
            << output.right(40).toStdString() << process.readAllStandardError().left(4000).toStdString();
        return output;
    }

    /// Expects that a file is played or refused within 64 MiB of addresses.
    static void expectLittleMemory(const QString& name)
    {
        const QByteArray output = runChild({name});
        ASSERT_TRUE(output.startsWith("took ")) << output.toStdString();
        EXPECT_LT(output.mid(5).trimmed().toInt(), 64) << name.toStdString();
    }
};

/// A kind of file: the end of its name, the codec for one with a cover, and the
/// number of channels for one whose stereo is followed by another stream.
struct HostileKind {
    const char* ending;
    const char* coverCodec = nullptr;
    quint16 nextChannels = 0;
};

void PrintTo(const HostileKind& kind, std::ostream* stream)
{
    *stream << kind.ending;
}

static std::string nameOfKind(const ::testing::TestParamInfo<HostileKind>& instance)
{
    std::string name = instance.param.ending;
    std::erase_if(name, [](char letter) { return letter == '.' || letter == '-'; });
    return name;
}

class HostileKindTest : public HostileInputTest, public ::testing::WithParamInterface<HostileKind> {
protected:
    QString named(const char* start) const { return file(start) + QString::fromLatin1(GetParam().ending); }
};

TEST_P(HostileKindTest, NoMutantCrashesHangsOrTakesMemoryOutOfProportion)
{
    if (GetParam().coverCodec)
        decoderfiles::makeWithCover(named("valid"), GetParam().coverCodec, 6000);
    else if (GetParam().nextChannels != 0)
        makeChain(named("valid"), {{44100, 2, 16}, {44100, GetParam().nextChannels, 16}}, 3000);
    else
        decoderfiles::make(named("valid"), 6000);
    const QByteArray output =
        runChild({named("valid"), named("mutant"), QStringLiteral("0"), QString::number(mutations())});
    EXPECT_TRUE(output.trimmed().endsWith("all played")) << output.right(40).toStdString();
}

constexpr HostileKind kindsWithCover[] = {
    {"-cover.mp3", "libmp3lame"}, {"-cover.m4a", "aac"}, {"-alac.m4a", "alac"}};

INSTANTIATE_TEST_SUITE_P(All, HostileKindTest,
                         ::testing::Values(HostileKind{".wav"}, HostileKind{".aiff"}, HostileKind{".mp3"},
                                           HostileKind{".flac"}, HostileKind{".aac"}, HostileKind{".m4a"},
                                           HostileKind{".ogg"}, HostileKind{".opus"}, HostileKind{".wv"},
                                           HostileKind{".dsf"}, HostileKind{".dff"}),
                         nameOfKind);
INSTANTIATE_TEST_SUITE_P(Chained, HostileKindTest,
                         ::testing::Values(HostileKind{"-chain.ogg", nullptr, 6},
                                           HostileKind{"-chain.opus", nullptr, 6},
                                           HostileKind{"-chain.mp3", nullptr, 1},
                                           HostileKind{"-chain.aac", nullptr, 6}),
                         nameOfKind);
INSTANTIATE_TEST_SUITE_P(WithCover, HostileKindTest, ::testing::ValuesIn(kindsWithCover), nameOfKind);

class CoverTest : public HostileKindTest {};

// 15,000 by 15,000 points of 8 bytes are 1.8 GB.
TEST_P(CoverTest, ACoverThatClaimsGigabytesIsNotDecoded)
{
    decoderfiles::makeWithCover(named("a"), GetParam().coverCodec, 20000);
    QByteArray bytes = readAll(named("a"));
    const qsizetype size = bytes.indexOf("IHDR") + 4;
    ASSERT_EQ(bytes.mid(size, 8), big(quint32{8}) + big(quint32{8}));
    bytes.replace(size, 8, big(quint32{15000}) + big(quint32{15000}));
    writeAll(named("b"), bytes);
    expectLittleMemory(named("b"));
    EXPECT_EQ(decode(named("b")).samples, decode(named("a")).samples);
}

TEST_P(CoverTest, ACoverChangesNoSample)
{
    decoderfiles::makeWithCover(named("a"), GetParam().coverCodec, 20000);
    const ToolResult made = runTool(QStringLiteral("ffmpeg"),
                                    {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                                     named("a") + QStringLiteral(".source.wav"), QStringLiteral("-c:a"),
                                     QString::fromLatin1(GetParam().coverCodec), named("plain")});
    ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    const Decoded decoded = decode(named("a"));
    EXPECT_EQ(decoded.format.sampleRate, 44100u);
    EXPECT_EQ(decoded.format.channels, 2);
    EXPECT_GE(decoded.frames(), 20000u);
    EXPECT_EQ(decoded.samples, decode(named("plain")).samples);
}

INSTANTIATE_TEST_SUITE_P(Kinds, CoverTest, ::testing::ValuesIn(kindsWithCover), nameOfKind);

// A look for the last page that reads the same again and again takes minutes here.
TEST_F(HostileInputTest, AnOggFileWithAnEndlessTailOfZeroesIsOpenedInTime)
{
    decoderfiles::make(file("a.ogg"), 20000);
    const Decoded plain = decode(file("a.ogg"));
    ASSERT_TRUE(QFile::resize(file("a.ogg"), qint64{500} << 20));
    expectLittleMemory(file("a.ogg"));
    EXPECT_EQ(decode(file("a.ogg")).samples, plain.samples);
}

// The decoder allocates for whole frames of all channels before it reads one.
TEST_F(HostileInputTest, AnAlacFrameLengthOutOfProportionIsRefusedBeforeADecoderOpens)
{
    writeAll(file("s.wav"), waveFile({44100, 6, 16}, decoderfiles::audio(20000, 6)));
    const ToolResult made =
        runTool(QStringLiteral("ffmpeg"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), file("s.wav"),
                 QStringLiteral("-c:a"), QStringLiteral("alac"), file("a.m4a")});
    ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    QByteArray bytes = readAll(file("a.m4a"));
    // The box within the sample entry has the entry's name, and then four bytes of version.
    const qsizetype frameLength = bytes.lastIndexOf("alac") + 8;
    ASSERT_EQ(bytes.mid(frameLength, 4), big(quint32{4096}));
    bytes.replace(frameLength, 4, big(quint32{4096 * 4096}));
    writeAll(file("b.m4a"), bytes);
    expectLittleMemory(file("b.m4a"));
    EXPECT_FALSE(decode(file("b.m4a")).opened);
}

// Files whose tables count what is not there. The library's index has 24 bytes for
// every sample.
class Mpeg4TablesTest : public HostileInputTest {
protected:
    /// A short AAC file, whose boxes stand behind the audio.
    QByteArray valid(const QStringList& options = {}) const
    {
        writeAll(file("s.wav"), waveFile({44100, 1, 16}, decoderfiles::audio(14000, 1)));
        const ToolResult made = runTool(QStringLiteral("ffmpeg"),
                                        QStringList{QStringLiteral("-v"), QStringLiteral("error"),
                                                    QStringLiteral("-y"), QStringLiteral("-i"), file("s.wav")}
                                            + options + QStringList{file("valid.m4a")});
        EXPECT_TRUE(made.ok()) << made.errors.toStdString();
        EXPECT_TRUE(decode(file("valid.m4a")).opened);
        return readAll(file("valid.m4a"));
    }

    /// Overwrites fields of a box from a place behind its name on.
    static void set(QByteArray& bytes, const char* box, qsizetype offset, const QByteArray& fields)
    {
        const qsizetype name = bytes.lastIndexOf(box);
        ASSERT_GT(name, 0);
        bytes.replace(name + 4 + offset, fields.size(), fields);
    }

    void expectRefused(const QByteArray& bytes) const
    {
        writeAll(file("a.m4a"), bytes);
        expectLittleMemory(file("a.m4a"));
        EXPECT_FALSE(decode(file("a.m4a")).opened);
    }

    static constexpr quint32 most = 60000000;
};

TEST_F(Mpeg4TablesTest, MoreSamplesOfOneSizeThanTheFileHasBytesAreRefused)
{
    QByteArray bytes = valid();
    // Behind each version: size and count; count of entries, frames of each; and the
    // count of entries, the first chunk, its frames.
    set(bytes, "stsz", 4, big(quint32{4}) + big(most));
    set(bytes, "stts", 8, big(most) + big(quint32{1024}));
    set(bytes, "stsc", 12, big(most));
    expectRefused(bytes);
}

TEST_F(Mpeg4TablesTest, MoreFramesInChunksThanTheFileCouldHoldAreRefused)
{
    QByteArray bytes = valid();
    // Samples of one unit each are a stream without frames, which is told by its chunks.
    set(bytes, "stts", 4, big(quint32{1}) + big(quint32{14}) + big(quint32{1}));
    set(bytes, "stsc", 12, big(quint32{0xFFFFFFFF}));
    expectRefused(bytes);
}

TEST_F(Mpeg4TablesTest, FragmentsOfMoreSamplesThanTheFileHasBytesAreRefused)
{
    QByteArray bytes = valid({QStringLiteral("-movflags"), QStringLiteral("frag_keyframe+empty_moov")});
    // All samples as the default is, so that the fragment has no field for each.
    const auto offset = bytes.mid(bytes.lastIndexOf("trun") + 12, 4);
    set(bytes, "trun", 0, big(quint32{1}) + big(most) + offset);
    expectRefused(bytes);
}

TEST_F(Mpeg4TablesTest, ABoxThatReachesToTheEndIsLookedInto)
{
    QByteArray bytes = valid();
    const qsizetype movie = bytes.lastIndexOf("moov") - 4;
    bytes.replace(movie, 4, big(quint32{0}));
    writeAll(file("b.m4a"), bytes);
    const Decoded decoded = decode(file("b.m4a"));
    EXPECT_EQ(decoded.frames(), 14000u);
    set(bytes, "stsz", 4, big(quint32{4}) + big(most));
    expectRefused(bytes);
}
