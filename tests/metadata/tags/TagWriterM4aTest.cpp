#include "metadata/tags/TaggedFile.h"

#include "support/Tool.h"

class TagWriterM4aTest : public TaggedFileTest, public ::testing::WithParamInterface<const char*> {
protected:
    // The data of an item: its box, then a "data" box with type and locale.
    QByteArray item(const char* name) const
    {
        const QByteArray bytes = readAll(path);
        const qsizetype place = bytes.indexOf(name, bytes.indexOf("ilst"));
        EXPECT_EQ(bytes.mid(place + 8, 4), "data") << name;
        return bytes.mid(place + 12);
    }

    bool hasItem(const char* name) const
    {
        const QByteArray bytes = readAll(path);
        return bytes.indexOf(name, bytes.indexOf("ilst")) >= 0;
    }

    const QString path = makeAudio("track.m4a", {"-c:a", GetParam()});
};

TEST_P(TagWriterM4aTest, EveryValueHasItsItem)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    const auto tags = probedTags(path);
    EXPECT_EQ(tags["title"], fullTags().title);
    EXPECT_EQ(tags["artist"], "The Artist");
    EXPECT_EQ(tags["album"], "The Album");
    EXPECT_EQ(tags["date"], "1997");
    EXPECT_EQ(tags["track"], "3/12");
    EXPECT_EQ(tags["disc"], "1/2");
    EXPECT_FALSE(readAll(path).contains("The Label"));
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
    EXPECT_TRUE(runTool("ffmpeg", {"-v", "error", "-xerror", "-i", path, "-f", "null", "-"}).ok());
}

TEST_P(TagWriterM4aTest, NumbersArePairsAndTheCoverIsMarkedAsJpeg)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    // Type 0 and locale 0, then reserved, number, total.
    EXPECT_EQ(item("trkn").left(14), QByteArray::fromHex("0000000000000000 0000 0003 000C"));
    EXPECT_EQ(item("disk").left(14), QByteArray::fromHex("0000000000000000 0000 0001 0002"));
    EXPECT_EQ(item("covr").left(10), QByteArray::fromHex("0000000D00000000 FFD8")); // 13: JPEG
}

TEST_P(TagWriterM4aTest, ASecondRunReplacesEveryItem)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.title = QStringLiteral("Second");
    tags.trackTotal = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(probedTags(path)["title"], "Second");
    EXPECT_EQ(probedTags(path)["track"], "3");
    EXPECT_EQ(readAll(path).count("covr"), 1);
    EXPECT_EQ(probedPictures(path).size(), 1);
}

TEST_P(TagWriterM4aTest, ANullCoverLeavesTheEarlierPicture)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.cover = QPixmap();
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
}

TEST_P(TagWriterM4aTest, NumbersOfZeroAreNotWritten)
{
    TagData tags = fullTags();
    tags.trackNumber = 0;
    tags.discNumber = 0;
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_FALSE(hasItem("trkn"));
    EXPECT_FALSE(hasItem("disk"));
}

TEST_P(TagWriterM4aTest, AYearOfLettersIsNoYear)
{
    TagData tags = fullTags();
    ASSERT_TRUE(writeTags(path, tags));
    tags.year = QStringLiteral("unknown");
    ASSERT_TRUE(writeTags(path, tags));
    EXPECT_FALSE(probedTags(path).contains("date"));
}

INSTANTIATE_TEST_SUITE_P(Codecs, TagWriterM4aTest, ::testing::Values("aac", "alac"),
                         [](const auto& instance) { return std::string(instance.param); });
