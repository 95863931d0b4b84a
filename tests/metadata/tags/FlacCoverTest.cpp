#include "metadata/tags/FlacCover.h"

#include "TaggedFile.h"
#include "support/Tool.h"

#include <QFile>

#include <taglib/flacfile.h>

class FlacCoverTest : public TaggedFileTest {
protected:
    // Adds a picture of so many bytes, saves, and says whether it was taken.
    bool add(unsigned int bytes) const
    {
        TagLib::FLAC::File flac(QFile::encodeName(path).constData());
        const bool taken = addFrontCover(flac, TagLib::ByteVector(bytes, 'j'));
        EXPECT_EQ(flac.pictureList().size(), taken ? 1u : 0u);
        EXPECT_TRUE(flac.save());
        return taken;
    }

    const QString path = makeAudio("track.flac");
};

// A block holds 2^24 - 1 bytes. In front of the picture stand eight numbers of
// four bytes, "image/jpeg" and "Cover".
constexpr unsigned int mostBytes = 16'777'215 - 8 * 4 - 10 - 5;

TEST_F(FlacCoverTest, TheLargestPictureThatABlockHoldsIsTakenWhole)
{
    EXPECT_TRUE(add(mostBytes));
    const ToolResult test = runTool("flac", {"-t", "-s", path});
    EXPECT_TRUE(test.ok()) << test.errors.toStdString();
    ASSERT_TRUE(runTool("metaflac", {"--export-picture-to=" + file("picture"), path}).ok());
    EXPECT_TRUE(readAll(file("picture")) == QByteArray(mostBytes, 'j'));
}

TEST_F(FlacCoverTest, APictureOfOneByteMoreIsRefused)
{
    const QByteArray digest = audioDigest(path);
    EXPECT_FALSE(add(mostBytes + 1));
    EXPECT_TRUE(runTool("flac", {"-t", "-s", path}).ok());
    EXPECT_EQ(audioDigest(path), digest);
}
