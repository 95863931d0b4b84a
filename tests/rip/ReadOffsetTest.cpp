#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "ScriptedDrive.h"

#include <cstdlib>

namespace {

/// Frames of the disc from one on, silence outside the audio area: what a track
/// must hold at an offset.
QByteArray discFrames(const QByteArray& audio, qint64 firstFrame, qint64 frames, quint32 firstAudio,
                      quint32 lastAudio)
{
    constexpr qint64 frameBytes = 4;
    QByteArray expected(frames * frameBytes, '\0');
    for (qint64 i = 0; i < frames; ++i) {
        const qint64 frame = firstFrame + i;
        if (frame >= qint64{firstAudio} * 588 && frame < (qint64{lastAudio} + 1) * 588)
            memcpy(expected.data() + i * frameBytes, audio.constData() + frame * frameBytes, frameBytes);
    }
    return expected;
}

class ReadOffset : public ::testing::TestWithParam<int> {
protected:
    void expectTrack(int number, quint32 firstLba, quint32 count, quint32 firstAudio, quint32 lastAudio)
    {
        const QByteArray track = audioOfWave(folder.filePath(
            QStringLiteral("%1. Track %2.wav").arg(number, 2, 10, QLatin1Char('0')).arg(number)));
        const QByteArray expected = discFrames(disc.audio, qint64{firstLba} * 588 + GetParam(),
                                               qint64{count} * 588, firstAudio, lastAudio);
        ASSERT_EQ(track.size(), expected.size());
        EXPECT_TRUE(track == expected) << "track " << number;
    }

    void rip()
    {
        run.drive.setReadOffset(GetParam());
        run.ripDisc(folder.path());
    }

    QTemporaryDir folder;
    ScriptedDrive disc{300};
    DrivePlatformOverride platform{disc};
    RunRecorder run;
};

} // namespace

TEST_P(ReadOffset, TracksBorrowFromTheirNeighboursAndFromSilenceAtTheEnds)
{
    disc.tracks = {{0}, {100}, {102}};
    rip();
    expectTrack(1, 0, 100, 0, 299);
    expectTrack(2, 100, 2, 0, 299);
    expectTrack(3, 102, 198, 0, 299);
    EXPECT_EQ(run.sectors.size(), 300) << "borrowed sectors are not reported";
}

TEST_P(ReadOffset, NothingIsBorrowedFromADataTrackInFront)
{
    disc.tracks = {{0, true}, {100}, {200}};
    rip();
    expectTrack(2, 100, 100, 100, 299);
    expectTrack(3, 200, 100, 100, 299);
}

TEST_P(ReadOffset, NothingIsBorrowedFromBehindTheLastAudioTrack)
{
    disc.tracks = {{0}, {100}, {200, true}};
    rip();
    expectTrack(1, 0, 100, 0, 199);
    expectTrack(2, 100, 100, 0, 199);
}

INSTANTIATE_TEST_SUITE_P(Offsets, ReadOffset,
                         ::testing::Values(0, 6, -6, 30, -30, 587, 588, -588, 589, 667, -667, 1176, 70000,
                                           -70000));

TEST(ApplyReadOffset, WithoutADriveNothingMoves)
{
    RipWorker worker;
    QList<int> samples{1, 2, 3, 4};
    worker.applyReadOffset(samples, 0, 0);
    EXPECT_EQ(samples, (QList<int>{1, 2, 3, 4}));
}

TEST(ApplyReadOffset, ANeighbourThatCannotBeReadIsSilence)
{
    ScriptedDrive disc(20);
    const DrivePlatformOverride platform(disc);
    CdDrive drive;
    ASSERT_TRUE(drive.open(disc.letter));
    drive.setReadOffset(-2);
    RipWorker worker;
    worker.configure(&drive, drive.readToc(), QString(), QString(), QString(), QString(), QPixmap(),
                     QString(), 1, 1, 300, OutputWav, QString(), 20);
    disc.failReads(9, 1);
    QList<int> samples{1, 2, 3, 4, 5, 6};
    worker.applyReadOffset(samples, 10, 10);
    EXPECT_EQ(samples, (QList<int>{0, 0, 0, 0, 1, 2}));
}
