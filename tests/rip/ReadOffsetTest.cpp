#include "rip/ReadOffset.h"

#include "ScriptedDrive.h"
#include "disc/CdDrive.h"
#include "disc/SampleValues.h"

#include <gtest/gtest.h>

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

class ReadOffset : public ::testing::Test {
protected:
    ReadOffset() { EXPECT_TRUE(drive.open(disc.letter)); }

    /// The disc's own tracks, and its last audio sector.
    AudioBounds load(const QList<SimulatedTrack>& tracks, quint32 lastAudio)
    {
        disc.tracks = tracks;
        EXPECT_TRUE(drive.open(disc.letter));
        return {drive.readToc().tracks, lastAudio};
    }

    QList<int> samplesOf(quint32 firstLba, quint32 count) const
    {
        QList<int> samples;
        for (quint32 lba = firstLba; lba < firstLba + count; ++lba)
            appendSampleValues(samples, disc.truth(lba));
        return samples;
    }

    ScriptedDrive disc{300};
    DrivePlatformOverride platform{disc};
    CdDrive drive;
};

class ReadOffsets : public ReadOffset, public ::testing::WithParamInterface<int> {
protected:
    void expectTrack(const AudioBounds& bounds, quint32 firstLba, quint32 count, quint32 firstAudio)
    {
        drive.setReadOffset(GetParam());
        QList<int> samples = samplesOf(firstLba, count);
        applyReadOffset(drive, bounds, samples, firstLba, firstLba + count - 1);
        const QByteArray expected = discFrames(disc.audio, qint64{firstLba} * 588 + GetParam(),
                                               qint64{count} * 588, firstAudio, bounds.lastAudioLba);
        QList<int> values;
        for (qsizetype at = 0; at < expected.size(); at += RAW_SECTOR_BYTES)
            appendSampleValues(values, expected.mid(at, RAW_SECTOR_BYTES));
        EXPECT_TRUE(samples == values) << "the track at " << firstLba;
    }
};

} // namespace

TEST_P(ReadOffsets, TracksBorrowFromTheirNeighboursAndFromSilenceAtTheEnds)
{
    const AudioBounds bounds = load({{0}, {100}, {102}}, 299);
    expectTrack(bounds, 0, 100, 0);
    expectTrack(bounds, 100, 2, 0);
    expectTrack(bounds, 102, 198, 0);
}

TEST_P(ReadOffsets, NothingIsBorrowedFromADataTrackInFront)
{
    const AudioBounds bounds = load({{0, true}, {100}, {200}}, 299);
    expectTrack(bounds, 100, 100, 100);
    expectTrack(bounds, 200, 100, 100);
}

TEST_P(ReadOffsets, NothingIsBorrowedFromBehindTheLastAudioTrack)
{
    const AudioBounds bounds = load({{0}, {100}, {200, true}}, 199);
    expectTrack(bounds, 0, 100, 0);
    expectTrack(bounds, 100, 100, 0);
}

INSTANTIATE_TEST_SUITE_P(Offsets, ReadOffsets,
                         ::testing::Values(0, 6, -6, 30, -30, 587, 588, -588, 589, 667, -667, 1176, 70000,
                                           -70000));

TEST_F(ReadOffset, ANeighbourThatCannotBeReadIsSilence)
{
    drive.setReadOffset(-2);
    disc.failReads(9, 1);
    QList<int> samples{1, 2, 3, 4, 5, 6};
    applyReadOffset(drive, load({{0}}, 299), samples, 10, 10);
    EXPECT_EQ(samples, (QList<int>{0, 0, 0, 0, 1, 2}));
}

TEST_F(ReadOffset, WithoutABoundTheDiscIsReadToItsEnd)
{
    drive.setReadOffset(1);
    AudioBounds bounds = load({{0}}, 99);
    QList<int> bounded{1, 2, 3, 4};
    applyReadOffset(drive, bounds, bounded, 99, 99);
    EXPECT_EQ(bounded, (QList<int>{3, 4, 0, 0}));
    bounds.lastAudioLba = 0;
    QList<int> unbounded{1, 2, 3, 4};
    applyReadOffset(drive, bounds, unbounded, 99, 99);
    EXPECT_EQ(unbounded, QList<int>({3, 4}) + samplesOf(100, 1).first(2));
}

TEST_F(ReadOffset, NoCommandReachesSectorsOutsideOfTheBounds)
{
    const AudioBounds bounds = load({{0, true}, {100}, {200, true}}, 199);
    const qsizetype before = disc.commands.size();
    for (const int frames : {-700, 700}) {
        drive.setReadOffset(frames);
        QList<int> samples = samplesOf(100, 100);
        applyReadOffset(drive, bounds, samples, 100, 199);
    }
    EXPECT_EQ(disc.commands.size(), before);
}

TEST_F(ReadOffset, NoCommandReachesADataTrackBetweenAudioTracks)
{
    const AudioBounds bounds = load({{0}, {100, true}, {200}}, 299);
    const qsizetype before = disc.commands.size();
    for (const int frames : {1, 588, -1, -588}) {
        drive.setReadOffset(frames);
        const quint32 first = frames > 0 ? 99 : 200;
        QList<int> samples{1, 2, 3, 4};
        applyReadOffset(drive, bounds, samples, first, first);
    }
    EXPECT_EQ(disc.commands.size(), before);
}

TEST_F(ReadOffset, WithNothingToShiftNothingIsRead)
{
    const AudioBounds bounds = load({{0}}, 299);
    const qsizetype before = disc.commands.size();
    QList<int> samples{1, 2, 3, 4};
    applyReadOffset(drive, bounds, samples, 50, 50);
    drive.setReadOffset(30);
    QList<int> none;
    applyReadOffset(drive, bounds, none, 50, 50);
    EXPECT_EQ(samples, (QList<int>{1, 2, 3, 4}));
    EXPECT_TRUE(none.isEmpty());
    EXPECT_EQ(disc.commands.size(), before);
}
