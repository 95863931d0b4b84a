// Which frames of an image's tracks count in the checksums: a sheet's numbers
// are held against 1 and against how many tracks it has.

#include <gtest/gtest.h>

#include "RunRecorder.h"

namespace {

constexpr int sectorsEach = 30;
constexpr qsizetype frames = sectorsEach * 588;
constexpr qsizetype trimmed = 5 * 588;

class ImageChecksum : public ::testing::Test {
protected:
    /// Rips a sheet of two tracks with numbers from `firstNumber` on.
    void rip(int firstNumber)
    {
        writeFile(folder.path(), QStringLiteral("disc.bin"), audio);
        QByteArray sheet = "FILE \"disc.bin\" BINARY\n";
        for (int track = 0; track < 2; ++track)
            sheet += "  TRACK 0" + QByteArray::number(firstNumber + track) + " AUDIO\n    INDEX 01 "
                     + cueTime(track * sectorsEach).toLatin1() + "\n";
        run.rip(writeFile(folder.path(), QStringLiteral("disc.cue"), sheet), OutputWav,
                folder.filePath(QStringLiteral("out")));
        ASSERT_EQ(run.results.size(), 2);
        EXPECT_EQ(run.results[0].trackNumber, firstNumber);
    }

    void expectCounted(int track, qsizetype first, qsizetype last)
    {
        expectChecksums(run.results[track], audio.mid(track * frames * 4, frames * 4), first, last);
    }

    QByteArray audio = makeAudio(2 * sectorsEach, 9);
    QTemporaryDir folder;
    RunRecorder run;
};

} // namespace

TEST_F(ImageChecksum, ASheetFromOneOnIsTrimmedAtBothEnds)
{
    rip(1);
    expectCounted(0, trimmed, frames);
    expectCounted(1, 1, frames - trimmed);
}

TEST_F(ImageChecksum, ASheetThatBeginsLaterIsTrimmedWhereANumberEqualsItsCount)
{
    rip(2);
    expectCounted(0, 1, frames - trimmed);
    expectCounted(1, 1, frames);
}

TEST_F(ImageChecksum, NumbersBeyondTheCountLeaveAllFrames)
{
    rip(5);
    expectCounted(0, 1, frames);
    expectCounted(1, 1, frames);
}

TEST_F(ImageChecksum, AnImageHasNoFrameWindow)
{
    audio = makeAudio(1000, 9);
    ImageDescription image;
    image.tracks = {{0, QString()}};
    run.rip(writeImage(folder.path(), image, audio), OutputWav, folder.filePath(QStringLiteral("out")));
    ASSERT_EQ(run.results.size(), 1);
    EXPECT_TRUE(run.results[0].frameWindow.isEmpty());
}
