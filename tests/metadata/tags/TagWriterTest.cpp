#include "metadata/tags/TaggedFile.h"

#include "support/Tool.h"

#include <QFile>
#include <QSemaphore>

#include <algorithm>
#include <ostream>
#include <thread>

struct FormatCase {
    const char* suffix;
    const char* words;  ///< of a file that won't open
    bool judgesContent; ///< false: TagLib takes any bytes for audio with no tag yet
};

static void PrintTo(const FormatCase& value, std::ostream* out)
{
    *out << value.suffix;
}

class TagWriterFormatTest : public TaggedFileTest, public ::testing::WithParamInterface<FormatCase> {
protected:
    TagWriterFormatTest() { lastTagError = QStringLiteral("untouched"); }

    QString put(const QByteArray& bytes) const
    {
        const QString path = folder.filePath("track." + QString::fromLatin1(GetParam().suffix));
        QFile target(path);
        EXPECT_TRUE(target.open(QIODevice::WriteOnly));
        EXPECT_EQ(target.write(bytes), bytes.size());
        return path;
    }

    void expectRefusal(const QString& path) const
    {
        EXPECT_FALSE(writeTags(path, fullTags()));
        EXPECT_EQ(lastTagError, QString::fromLatin1(GetParam().words) + path);
    }
};

TEST_P(TagWriterFormatTest, AMissingFileIsRefusedAndNotMade)
{
    const QString path = folder.filePath("missing." + QString::fromLatin1(GetParam().suffix));
    expectRefusal(path);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_P(TagWriterFormatTest, BytesThatAreNoAudioDoNoHarm)
{
    for (const QByteArray& bytes : {QByteArray(), QByteArray("x"), QByteArray(70000, '\xFF'),
                                    QByteArray("plain words, again and again ").repeated(500)}) {
        const QString path = put(bytes);
        if (GetParam().judgesContent) {
            expectRefusal(path);
            EXPECT_EQ(readAll(path), bytes);
        } else {
            EXPECT_TRUE(writeTags(path, fullTags()));
            // The first eight may be taken for the head of a chunk.
            EXPECT_TRUE(readAll(path).contains(bytes.mid(8)));
        }
    }
}

TEST_P(TagWriterFormatTest, TruncatedFilesDoNotCrash)
{
    const QByteArray suffix = GetParam().suffix;
    const QString whole = makeAudio(suffix == "none" ? "whole.flac" : ("whole." + suffix).constData());
    ASSERT_TRUE(writeTags(whole, fullTags()));
    const QByteArray bytes = readAll(whole);
    for (qsizetype length = 0; length < bytes.size(); length += 1 + length / 3) {
        const QString path = put(bytes.left(length));
        lastTagError.clear();
        const bool written = writeTags(path, fullTags());
        EXPECT_TRUE(written || lastTagError.endsWith(path)) << lastTagError.toStdString();
    }
}

TEST_P(TagWriterFormatTest, FlippedBytesDoNotCrash)
{
    const QByteArray suffix = GetParam().suffix;
    const QString whole = makeAudio(suffix == "none" ? "whole.flac" : ("whole." + suffix).constData());
    ASSERT_TRUE(writeTags(whole, fullTags()));
    const QByteArray bytes = readAll(whole);
    for (qsizetype place = 0; place < std::min<qsizetype>(bytes.size(), 900); place += 7) {
        QByteArray bent = bytes;
        bent[place] = static_cast<char>(bent[place] ^ 0xFF);
        static_cast<void>(writeTags(put(bent), TagData()));
    }
}

INSTANTIATE_TEST_SUITE_P(Suffixes, TagWriterFormatTest,
                         ::testing::Values(FormatCase{"mp3", "Cannot open MP3 file: ", false},
                                           FormatCase{"flac", "Cannot open FLAC file: ", true},
                                           FormatCase{"m4a", "Cannot open M4A file: ", true},
                                           FormatCase{"wav", "Cannot open WAV file: ", false},
                                           FormatCase{"none", "Cannot open FLAC file: ", true}),
                         [](const auto& instance) { return std::string(instance.param.suffix); });

class TagWriterTest : public TaggedFileTest {};

TEST_F(TagWriterTest, AnAiffFileIsTakenForFlacAndRefused)
{
    const QString path = makeAudio("track.aiff");
    EXPECT_FALSE(writeTags(path, fullTags()));
    EXPECT_EQ(lastTagError, "Cannot open FLAC file: " + path);
}

TEST_F(TagWriterTest, AFlacFileWithoutSuffixIsTagged)
{
    const QString path = file("noSuffix");
    ASSERT_TRUE(QFile::copy(makeAudio("track.flac"), path));
    ASSERT_TRUE(writeTags(path, fullTags()));
    EXPECT_EQ(runTool("metaflac", {"--show-tag=ARTIST", path}).output.trimmed(), "ARTIST=The Artist");
}

TEST_F(TagWriterTest, SuffixesInCapitalsAreTheSame)
{
    for (const char* name : {"A.WAV", "A.M4A", "A.FLAC"})
        EXPECT_TRUE(writeTags(makeAudio(name), fullTags())) << name;
}

TEST_F(TagWriterTest, SuccessLeavesTheLastWords)
{
    lastTagError = QStringLiteral("earlier words");
    EXPECT_TRUE(writeTags(makeAudio("track.flac"), fullTags()));
    EXPECT_EQ(lastTagError, "earlier words");
}

TEST_F(TagWriterTest, EachThreadHasTheWordsOfItsOwnFailure)
{
    const auto failAt = [this](const char* name) {
        EXPECT_FALSE(writeTags(file(name), fullTags()));
        return QStringLiteral("Cannot open FLAC file: ") + file(name);
    };
    const QString words = failAt("here.flac");
    std::thread other([&] { EXPECT_EQ(failAt("there.flac"), lastTagError); });
    other.join();
    EXPECT_EQ(lastTagError, words);
}

TEST_F(TagWriterTest, FailuresOnTwoThreadsAtOnceDoNotDisturbEachOther)
{
    QSemaphore arrivals[2];
    const auto meet = [&arrivals](int who) {
        arrivals[1 - who].release();
        arrivals[who].acquire();
    };
    const auto failOften = [&](int who, const char* name) {
        for (int i = 0; i < 200; ++i) {
            meet(who);
            EXPECT_FALSE(writeTags(file(name), TagData()));
            meet(who);
            EXPECT_EQ(lastTagError, QStringLiteral("Cannot open FLAC file: ") + file(name));
        }
    };
    std::thread other(failOften, 1, "there.flac");
    failOften(0, "here.flac");
    other.join();
}

// 65,500 points are the most that the format has room for.
TEST_F(TagWriterTest, ACoverThatIsNoJpegIsLeftOutAndEarlierPicturesStay)
{
    TagData tags = fullTags();
    tags.cover = QPixmap(65'600, 1);
    tags.cover.fill(Qt::green);
    ASSERT_FALSE(tags.cover.isNull());
    for (const char* name : {"a.mp3", "a.flac", "a.m4a", "a.wav"}) {
        const QString path = makeAudio(name);
        bool leftOut = false;
        EXPECT_TRUE(writeTags(path, tags, &leftOut)) << name;
        EXPECT_TRUE(leftOut) << name;
        const QByteArray bytes = readAll(path);
        EXPECT_FALSE(bytes.contains("APIC") || bytes.contains("covr") || bytes.contains("image/jpeg"))
            << name;
        EXPECT_EQ(probedTags(path)["artist"], "The Artist") << name;

        ASSERT_TRUE(writeTags(path, fullTags(), &leftOut));
        EXPECT_FALSE(leftOut) << name;
        EXPECT_TRUE(writeTags(path, tags)) << name;
        EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"}) << name;
        EXPECT_TRUE(writeTags(path, TagData(), &leftOut));
        EXPECT_FALSE(leftOut) << "no cover was given: " << name;
    }
}

TEST_F(TagWriterTest, NamesBeyondAsciiAreOpened)
{
    const QString path = makeAudio("曲 Größe.wav");
    EXPECT_TRUE(writeTags(path, fullTags()));
    EXPECT_EQ(probedTags(path)["artist"], "The Artist");
}

TEST_F(TagWriterTest, EmptyTagsAreWrittenToEveryFormat)
{
    for (const char* name : {"a.mp3", "a.flac", "a.m4a", "a.wav"}) {
        const QString path = makeAudio(name);
        EXPECT_TRUE(writeTags(path, TagData())) << name;
        EXPECT_FALSE(probedTags(path).contains("title")) << name;
        EXPECT_EQ(probedPictures(path), QStringList()) << name;
    }
}
