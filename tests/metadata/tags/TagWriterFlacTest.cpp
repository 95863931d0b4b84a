#include "metadata/tags/TaggedFile.h"

#include "support/LogCapture.h"
#include "support/Tool.h"

#include <QBuffer>
#include <QImage>
#include <QRandomGenerator>

#include <algorithm>

class TagWriterFlacTest : public TaggedFileTest {
protected:
    // "KEY=value" lines, sorted; without the one that names the encoder.
    QStringList comments() const
    {
        const ToolResult tool = runTool("metaflac", {"--no-utf8-convert", "--export-tags-to=-", path});
        EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
        QStringList lines = QString::fromUtf8(tool.output).split('\n', Qt::SkipEmptyParts);
        lines.removeIf([](const QString& line) { return line.startsWith("encoder=", Qt::CaseInsensitive); });
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    QByteArray pictures() const
    {
        return runTool("metaflac", {"--list", "--block-type=PICTURE", path}).output;
    }

    const QString path = makeAudio("track.flac");
};

TEST_F(TagWriterFlacTest, EveryValueHasItsField)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    EXPECT_EQ(comments(), (QStringList{"ALBUM=The Album", "ARTIST=The Artist", "DATE=1997", "DISCNUMBER=1",
                                       "DISCTOTAL=2", "ORGANIZATION=The Label", "TITLE=" + fullTags().title,
                                       "TRACKNUMBER=3", "TRACKTOTAL=12"}));
    EXPECT_TRUE(runTool("flac", {"-t", "-s", path}).ok());
}

TEST_F(TagWriterFlacTest, CoverIsAFrontCoverWithoutStatedSize)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    const QByteArray listed = pictures();
    EXPECT_EQ(listed.count("METADATA block #"), 1);
    EXPECT_TRUE(listed.contains("type: 3 (Cover (front))"));
    EXPECT_TRUE(listed.contains("MIME type: image/jpeg"));
    EXPECT_TRUE(listed.contains("description: Cover\n"));
    EXPECT_TRUE(listed.contains("width: 0\n"));
    EXPECT_TRUE(listed.contains("height: 0\n"));
    EXPECT_TRUE(listed.contains("depth: 0\n"));
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
}

TEST_F(TagWriterFlacTest, ASecondRunAddsASecondPictureAndReplacesTheFields)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.title = QStringLiteral("Second");
    tags.discTotal = 3;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(pictures().count("METADATA block #"), 2);
    EXPECT_EQ(comments().filter("TITLE="), QStringList{"TITLE=Second"});
    EXPECT_EQ(comments().filter("DISCTOTAL="), QStringList{"DISCTOTAL=3"});
    EXPECT_EQ(comments().size(), 9);
}

TEST_F(TagWriterFlacTest, ANullCoverLeavesTheEarlierPicture)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.cover = QPixmap();
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(pictures().count("METADATA block #"), 1);
}

// The length of a block has 24 bits.
TEST_F(TagWriterFlacTest, ACoverAboveSixteenMegabytesIsLeftOutOfAWholeFile)
{
    constexpr int edge = 5000;
    QImage noise(edge, edge, QImage::Format_RGB32);
    QRandomGenerator random(5);
    for (int y = 0; y < edge; ++y)
        random.fillRange(reinterpret_cast<quint32*>(noise.scanLine(y)), edge);
    QBuffer jpeg;
    ASSERT_TRUE(noise.save(&jpeg, "JPEG", 90));
    ASSERT_GT(jpeg.size(), 0xFFFFFF);

    TagData tags = fullTags();
    tags.cover = QPixmap::fromImage(noise);
    bool leftOut = false;
    {
        const LogCapture log;
        ASSERT_TRUE(writeTags(path, tags, &leftOut));
        EXPECT_EQ(log.warnings(), QStringList{"[Tags] cover too large, left out of " + path});
    }
    EXPECT_TRUE(leftOut);
    const ToolResult test = runTool("flac", {"-t", "-s", path});
    EXPECT_TRUE(test.ok()) << test.errors.toStdString();
    EXPECT_EQ(pictures().count("METADATA block #"), 0);
    EXPECT_EQ(comments().filter("ARTIST="), QStringList{"ARTIST=The Artist"});

    const QString other = makeAudio("track.mp3");
    ASSERT_TRUE(writeTags(other, tags, &leftOut));
    EXPECT_FALSE(leftOut);
    EXPECT_EQ(probedPictures(other), QStringList{"mjpeg 5000x5000"}) << "an ID3v2 tag has the room";
}

TEST_F(TagWriterFlacTest, TotalsOfZeroAreNotWritten)
{
    TagData tags = fullTags();
    tags.trackTotal = 0;
    tags.discTotal = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(comments().filter("TRACK"), QStringList{"TRACKNUMBER=3"});
    EXPECT_EQ(comments().filter("DISC"), QStringList{"DISCNUMBER=1"});
}

TEST_F(TagWriterFlacTest, DiscZeroWritesNoDiscWhateverTheTotal)
{
    TagData tags = fullTags();
    tags.discNumber = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(comments().filter("DISC"), QStringList());
}

TEST_F(TagWriterFlacTest, AnEmptyLabelAndTrackZeroAreNotWritten)
{
    TagData tags = fullTags();
    tags.label.clear();
    tags.trackNumber = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(comments().filter("ORGANIZATION"), QStringList());
    EXPECT_EQ(comments().filter("TRACK"), QStringList{"TRACKTOTAL=12"});
}

TEST_F(TagWriterFlacTest, AYearOfLettersIsNoYear)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.year = QStringLiteral("unknown");
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(comments().filter("DATE"), QStringList());
}

TEST_F(TagWriterFlacTest, FieldsOfOthersStay)
{
    ASSERT_TRUE(runTool("metaflac", {"--set-tag=REPLAYGAIN_TRACK_GAIN=-1.00 dB", path}).ok());
    ASSERT_TRUE(writeTags(path, fullTags()));
    EXPECT_EQ(comments().filter("REPLAYGAIN"), QStringList{"REPLAYGAIN_TRACK_GAIN=-1.00 dB"});
}
