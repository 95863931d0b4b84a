#include "disc/SlowNoise.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"
#include "support/DiscMaker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr qint64 second = 1'000'000'000;
constexpr quint32 lastAddress = 449'999; // 99:59:74

/// Another noise for each number. No byte is 0.
QByteArray noise(quint32 number, qsizetype sectors = 1)
{
    QByteArray bytes(sectors * RAW_SECTOR_BYTES, Qt::Uninitialized);
    std::mt19937 random(number);
    std::uniform_int_distribution<int> byte(1, 255);
    for (char& one : bytes)
        one = static_cast<char>(byte(random));
    return bytes;
}

/// A high tone of 5 kHz in both channels: a ninth of its way round from frame to frame.
QByteArray highTone()
{
    QByteArray bytes(RAW_SECTOR_BYTES, Qt::Uninitialized);
    for (qsizetype place = 0; place < bytes.size(); place += 2) {
        const double turns = 5000.0 / 44100 * static_cast<double>(place / 4);
        const double height = 12000 * std::sin(2 * std::numbers::pi * turns);
        byteorder::writeLittle(bytes.data() + place, static_cast<qint16>(height));
    }
    return bytes;
}

/// A reading that has so many bytes in common with another.
QByteArray sharing(const QByteArray& other, qsizetype bytes)
{
    QByteArray reading = other;
    for (qsizetype place = bytes; place < reading.size(); ++place)
        reading[place] = static_cast<char>(reading[place] ^ 0x55);
    return reading;
}

class SlowNoiseTest : public ::testing::Test {
protected:
    bool dies(const QByteArray& reading, qint64 nanoseconds = second, quint32 lba = 7,
              const QList<int>& c2Counts = {})
    {
        return finder.delivered(lba, reading, c2Counts, nanoseconds).contains(lba);
    }

    /// How many noises from here on it takes until the sector is dead; 0: it is not after 40.
    int noisesToDeath(quint32 lba = 7)
    {
        for (quint32 turn = 1; turn <= 40; ++turn) {
            if (dies(noise(1000 + turn), second, lba))
                return static_cast<int>(turn);
        }
        return 0;
    }

    SlowNoise finder;
};

} // namespace

TEST_F(SlowNoiseTest, FiveSlowReadingsUnlikeEachOtherShowADeadSector)
{
    EXPECT_EQ(noisesToDeath(), 5);
    EXPECT_EQ(noisesToDeath(lastAddress), 5);
}

TEST_F(SlowNoiseTest, WhatHasDiedOnceMayBeMetAgain)
{
    EXPECT_EQ(noisesToDeath(), 5);
    EXPECT_EQ(noisesToDeath(), 5);
}

TEST_F(SlowNoiseTest, HalfASecondIsSlow)
{
    for (quint32 turn = 0; turn < 4; ++turn)
        EXPECT_FALSE(dies(noise(turn), second / 2));
    EXPECT_TRUE(dies(noise(4), second / 2));
}

TEST_F(SlowNoiseTest, ASectorThatCameQuicklyOnceIsSound)
{
    for (quint32 turn = 0; turn < 4; ++turn)
        dies(noise(turn));
    EXPECT_FALSE(dies(noise(4), second / 2 - 1));
    EXPECT_EQ(noisesToDeath(), 0);
}

TEST_F(SlowNoiseTest, AQuickFirstReadingIsEnough)
{
    dies(noise(1), 0);
    EXPECT_EQ(noisesToDeath(), 0);
    EXPECT_EQ(noisesToDeath(8), 5) << "of another sector it says nothing";
}

// So a drive's memory answers. A reading from before that one comes from the disc.
TEST_F(SlowNoiseTest, TheLastReadingOnceMoreAndQuicklySaysNothing)
{
    for (quint32 turn = 0; turn < 4; ++turn) {
        EXPECT_FALSE(dies(noise(turn)));
        EXPECT_FALSE(dies(noise(turn), 0));
    }
    EXPECT_TRUE(dies(noise(4)));

    dies(noise(1));
    dies(noise(2));
    EXPECT_FALSE(dies(noise(1), 0));
    EXPECT_EQ(noisesToDeath(), 0);
}

TEST_F(SlowNoiseTest, ASectorThatIsLegibleNowAndThenIsSound)
{
    const QByteArray truth = noise(99);
    for (quint32 turn = 0; turn < 2; ++turn) {
        EXPECT_FALSE(dies(truth));
        EXPECT_FALSE(dies(noise(turn)));
    }
    EXPECT_EQ(noisesToDeath(), 0);
}

TEST_F(SlowNoiseTest, ASectorWithAFewWrongBytesIsSound)
{
    const QByteArray truth = noise(99);
    for (quint32 turn = 0; turn < 40; ++turn) {
        QByteArray reading = truth;
        reading.replace(qsizetype{turn} * 40, 40, noise(turn).first(40));
        EXPECT_FALSE(dies(reading));
    }
}

// 2352 / 8 = 294
TEST_F(SlowNoiseTest, AnEighthInCommonIsMoreThanNoisesHave)
{
    const QByteArray truth = noise(99);
    dies(truth);
    EXPECT_FALSE(dies(sharing(truth, 294)));
    EXPECT_EQ(noisesToDeath(), 0);

    EXPECT_FALSE(dies(truth, second, 8));
    EXPECT_FALSE(dies(sharing(truth, 293), second, 8));
    EXPECT_EQ(noisesToDeath(8), 3);
}

TEST_F(SlowNoiseTest, SilenceIsNoNoise)
{
    for (quint32 turn = 0; turn < 4; ++turn)
        dies(noise(turn));
    EXPECT_FALSE(dies(QByteArray(RAW_SECTOR_BYTES, '\0')));
    EXPECT_EQ(noisesToDeath(), 0);
}

// So a drive reads that does not find its place again to the sample.
TEST_F(SlowNoiseTest, MusicFromAnotherPlaceEachTimeIsNoNoise)
{
    const QByteArray music = makeAudio(12, 9);
    for (qsizetype turn = 0; turn < 40; ++turn)
        EXPECT_FALSE(dies(music.sliced(turn * 139 * 4, RAW_SECTOR_BYTES), second, 7, {1}));
}

TEST_F(SlowNoiseTest, MusicOnceBetweenNoisesIsEnough)
{
    quint32 lba = 7;
    for (const QByteArray& music : {makeAudio(1, 9), highTone()}) {
        for (quint32 turn = 0; turn < 4; ++turn)
            dies(noise(turn), second, lba);
        EXPECT_FALSE(dies(music, second, lba));
        EXPECT_EQ(noisesToDeath(lba++), 0);
    }
}

TEST_F(SlowNoiseTest, ASectorWithoutAPointerIsSound)
{
    for (quint32 turn = 0; turn < 4; ++turn)
        EXPECT_FALSE(dies(noise(turn), second, 7, {1}));
    EXPECT_FALSE(dies(noise(4), second, 7, {0}));
    EXPECT_EQ(noisesToDeath(), 0);
    for (quint32 turn = 0; turn < 4; ++turn)
        EXPECT_FALSE(dies(noise(turn), second, 8, {1}));
    EXPECT_TRUE(dies(noise(4), second, 8, {1}));
}

TEST_F(SlowNoiseTest, ABatchCountsForEachOfItsSectors)
{
    const QByteArray sound = noise(99);
    for (quint32 turn = 0; turn < 4; ++turn)
        EXPECT_TRUE(finder.delivered(10, sound + noise(turn, 3) + sound, {}, 6 * second).isEmpty());
    EXPECT_EQ(finder.delivered(10, sound + noise(4, 3) + sound, {}, 6 * second),
              (QList<quint32>{11, 12, 13}));
    EXPECT_EQ(noisesToDeath(10), 0);
    EXPECT_EQ(noisesToDeath(14), 0);
    EXPECT_EQ(noisesToDeath(15), 5);
}

TEST_F(SlowNoiseTest, TwoThousandSectorsAreRememberedAndTheOldestGoes)
{
    for (quint32 lba = 0; lba < 2001; ++lba) {
        for (quint32 turn = 0; turn < 4; ++turn)
            dies(noise(turn), second, lba);
    }
    EXPECT_TRUE(dies(noise(5), second, 2000));
    EXPECT_TRUE(dies(noise(5), second, 1));
    EXPECT_FALSE(dies(noise(5), second, 0));
}

TEST_F(SlowNoiseTest, AnAddressThatNoDiscHasIsLeftAlone)
{
    EXPECT_EQ(noisesToDeath(lastAddress + 1), 0);
    EXPECT_EQ(noisesToDeath(0xFFFFFFFF), 0);
}
