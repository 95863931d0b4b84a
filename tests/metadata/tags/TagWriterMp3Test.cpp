#include "metadata/tags/TaggedFile.h"

#include "support/Tool.h"

#include <thread>

using Payloads = QList<QByteArray>;

class TagWriterMp3Test : public TaggedFileTest {
protected:
    QList<Id3Frame> frames() const { return id3Frames(readAll(path)); }

    QByteArray audio() const { return audioDigest(path); }

    const QString path = makeAudio("track.mp3");
};

TEST_F(TagWriterMp3Test, EveryValueHasItsFrameInUtf8)
{
    const QByteArray before = audio();
    ASSERT_TRUE(writeTags(path, fullTags()));
    EXPECT_EQ(framesOf(frames(), "TIT2"), (Payloads{utf8Frame("Größe 曲 \xF0\x9F\x8E\xB5")}));
    EXPECT_EQ(framesOf(frames(), "TPE1"), (Payloads{utf8Frame("The Artist")}));
    EXPECT_EQ(framesOf(frames(), "TALB"), (Payloads{utf8Frame("The Album")}));
    EXPECT_EQ(framesOf(frames(), "TDRC"), (Payloads{utf8Frame("1997")}));
    EXPECT_EQ(framesOf(frames(), "TPUB"), (Payloads{utf8Frame("The Label")}));
    EXPECT_EQ(framesOf(frames(), "TRCK"), (Payloads{utf8Frame("3/12")}));
    EXPECT_EQ(framesOf(frames(), "TPOS"), (Payloads{utf8Frame("1/2")}));
    EXPECT_EQ(audio(), before);
}

TEST_F(TagWriterMp3Test, OtherProgramsReadTheValues)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    const auto tags = probedTags(path);
    EXPECT_EQ(tags["title"], fullTags().title);
    EXPECT_EQ(tags["artist"], "The Artist");
    EXPECT_EQ(tags["album"], "The Album");
    EXPECT_EQ(tags["date"], "1997");
    EXPECT_EQ(tags["publisher"], "The Label");
    EXPECT_EQ(tags["track"], "3/12");
    EXPECT_EQ(tags["disc"], "1/2");
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
}

TEST_F(TagWriterMp3Test, CoverIsAFrontCoverInJpegOfQuality90)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    const Payloads pictures = framesOf(frames(), "APIC");
    ASSERT_EQ(pictures.size(), 1);
    // Encoding, MIME type, picture type 3, description, then the picture.
    const QByteArray head = QByteArray("\x03image/jpeg\0\x03"
                                       "Cover\0",
                                       19);
    EXPECT_EQ(pictures[0].left(head.size()), head);
    const QByteArray jpeg = pictures[0].mid(head.size());
    const QImage image = QImage::fromData(jpeg, "JPEG");
    EXPECT_EQ(image.size(), QSize(40, 30));
    EXPECT_NEAR(qRed(image.pixel(20, 15)), 255, 6);
    // The common luminance table begins 16 11 12 14 12 10 16 14; quality 90
    // makes (20 * value + 50) / 100 of each.
    const qsizetype table = jpeg.indexOf(QByteArray::fromHex("FFDB004300"));
    EXPECT_EQ(jpeg.mid(table + 5, 8), QByteArray::fromHex("0302020302020303"));
}

TEST_F(TagWriterMp3Test, AnEmptyTitleRemovesTheEarlierOne)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    ASSERT_EQ(framesOf(frames(), "TIT2").size(), 1);
    tags.title.clear();
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TIT2"), Payloads());
    EXPECT_FALSE(probedTags(path).contains("title"));
    EXPECT_EQ(framesOf(frames(), "TPE1").size(), 1);
}

TEST_F(TagWriterMp3Test, AnEmptyTitleIsNotTakenFromAnOldShortTag)
{
    const QString other = file("old.mp3");
    ASSERT_TRUE(runTool("lame", {"--quiet", "--id3v1-only", "--tt", "Old", "--tc", "Kept",
                                 makeAudio("source.wav"), other})
                    .ok());
    ASSERT_EQ(readAll(other).right(128).left(6), "TAGOld");
    TagData tags;
    tags.artist = QStringLiteral("New");
    ASSERT_TRUE(writeTags(other, tags));
    EXPECT_EQ(framesOf(id3Frames(readAll(other)), "TIT2"), Payloads());
    EXPECT_EQ(probedTags(other)["artist"], "New");
    EXPECT_TRUE(readAll(other).right(128).startsWith(QByteArray("TAG\0", 4)));
    // What we have no value for stays.
    EXPECT_TRUE(readAll(other).right(128).contains("Kept"));
}

TEST_F(TagWriterMp3Test, EarlierFramesAreReplacedAndNotDoubled)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.title = QStringLiteral("Second");
    tags.trackNumber = 4;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TIT2"), (Payloads{utf8Frame("Second")}));
    EXPECT_EQ(framesOf(frames(), "TRCK"), (Payloads{utf8Frame("4/12")}));
    EXPECT_EQ(framesOf(frames(), "APIC").size(), 1);
}

TEST_F(TagWriterMp3Test, ATrackWithoutTotalStandsAlone)
{
    TagData tags = fullTags();
    tags.trackTotal = 0;
    tags.discTotal = -1;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TRCK"), (Payloads{utf8Frame("3")}));
    EXPECT_EQ(framesOf(frames(), "TPOS"), (Payloads{utf8Frame("1")}));
}

TEST_F(TagWriterMp3Test, NumbersThatAreNotAboveZeroLeaveTheOldOnes)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.trackNumber = 0;
    tags.discNumber = 0;
    tags.discTotal = 9;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TRCK"), (Payloads{utf8Frame("3/12")}));
    EXPECT_EQ(framesOf(frames(), "TPOS"), (Payloads{utf8Frame("1/2")}));
}

TEST_F(TagWriterMp3Test, DiscZeroWritesNoDiscWhateverTheTotal)
{
    TagData tags = fullTags();
    tags.discNumber = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TPOS"), Payloads());
}

TEST_F(TagWriterMp3Test, AYearOfLettersIsKeptCutToFour)
{
    TagData tags = fullTags();
    tags.year = QStringLiteral("unknown");
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TDRC"), (Payloads{utf8Frame("unkn")}));
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(framesOf(frames(), "TDRC"), (Payloads{utf8Frame("unkn")}));
}

TEST_F(TagWriterMp3Test, ANullCoverLeavesTheEarlierPicture)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    const Payloads before = framesOf(frames(), "APIC");
    tags.cover = QPixmap();
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(before.size(), 1);
    EXPECT_EQ(framesOf(frames(), "APIC"), before);
}

TEST_F(TagWriterMp3Test, ASuffixInCapitalsIsMp3Too)
{
    const QString loud = makeAudio("LOUD.MP3");
    ASSERT_TRUE(writeTags(loud, fullTags()));
    EXPECT_EQ(framesOf(id3Frames(readAll(loud)), "TPE1"), (Payloads{utf8Frame("The Artist")}));
}

TEST_F(TagWriterMp3Test, TagsCanBeWrittenOnAnotherThread)
{
    const TagData tags = fullTags();
    bool written = false;
    std::thread([&] { written = writeTags(path, tags); }).join();
    EXPECT_TRUE(written);
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
}
