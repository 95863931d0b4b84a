#include "metadata/tags/TaggedFile.h"

#include "support/Tool.h"

using Payloads = QList<QByteArray>;

class TagWriterWavTest : public TaggedFileTest {
protected:
    QMap<QByteArray, QByteArray> chunks() const { return waveChunks(readAll(path)); }
    QList<Id3Frame> frames() const { return id3Frames(chunks()["ID3 "]); }
    QMap<QByteArray, QByteArray> info() const { return infoValues(chunks()["LIST"]); }

    const QString path = makeAudio("track.wav");
};

TEST_F(TagWriterWavTest, BothKindsOfTagsAreWritten)
{
    const QByteArray audio = chunks()["DATA"];
    ASSERT_TRUE(writeTags(path, fullTags()));
    EXPECT_EQ(framesOf(frames(), "TIT2"), (Payloads{utf8Frame("Größe 曲 \xF0\x9F\x8E\xB5")}));
    EXPECT_EQ(framesOf(frames(), "TDRC"), (Payloads{utf8Frame("1997")}));
    EXPECT_EQ(framesOf(frames(), "TPUB"), (Payloads{utf8Frame("The Label")}));
    EXPECT_EQ(framesOf(frames(), "TRCK"), (Payloads{utf8Frame("3/12")}));
    EXPECT_EQ(framesOf(frames(), "TPOS"), (Payloads{utf8Frame("1/2")}));
    EXPECT_EQ(framesOf(frames(), "APIC").size(), 1);
    EXPECT_EQ(info()["INAM"], fullTags().title.toUtf8());
    EXPECT_EQ(info()["IART"], "The Artist");
    EXPECT_EQ(info()["IPRD"], "The Album");
    EXPECT_EQ(info()["ICRD"], "1997");
    EXPECT_EQ(info()["IPRT"], "3");
    EXPECT_EQ(chunks()["DATA"], audio);
}

TEST_F(TagWriterWavTest, OtherProgramsReadTheValues)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    const auto tags = probedTags(path);
    EXPECT_EQ(tags["title"], fullTags().title);
    EXPECT_EQ(tags["artist"], "The Artist");
    EXPECT_EQ(tags["album"], "The Album");
    EXPECT_EQ(tags["date"], "1997");
    EXPECT_TRUE(runTool("soxi", {path}).ok());
}

TEST_F(TagWriterWavTest, ASecondRunReplacesBothTags)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.title.clear();
    tags.artist = QStringLiteral("Second");
    tags.cover = QPixmap();
    tags.discNumber = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TIT2"), Payloads());
    EXPECT_EQ(framesOf(frames(), "TPE1"), (Payloads{utf8Frame("Second")}));
    EXPECT_EQ(framesOf(frames(), "TPOS"), (Payloads{utf8Frame("1/2")}));
    EXPECT_EQ(framesOf(frames(), "APIC").size(), 1);
    EXPECT_FALSE(info().contains("INAM"));
    EXPECT_EQ(info()["IART"], "Second");
    const QByteArray bytes = readAll(path);
    EXPECT_EQ(bytes.count("LIST"), 1);
    EXPECT_EQ(bytes.count("ID3\x04"), 1);
}

TEST_F(TagWriterWavTest, DiscZeroWritesNoDiscWhateverTheTotal)
{
    TagData tags = fullTags();
    tags.discNumber = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TPOS"), Payloads());
}

TEST_F(TagWriterWavTest, AYearOfLettersStandsInOneTagAlone)
{
    TagData tags = fullTags();
    tags.year = QStringLiteral("unknown");
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TDRC"), (Payloads{utf8Frame("unkn")}));
    EXPECT_FALSE(info().contains("ICRD"));
}
