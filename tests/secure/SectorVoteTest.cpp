#include "secure/SectorVote.h"

#include <gtest/gtest.h>

namespace {

/// Answers the reads of sector 7 (or `wanted`) from a script, '!' standing for
/// a failure, and notes what was read.
struct Script {
    QByteArray answers;
    quint32 wanted = 7;
    QList<quint32> reads = {};
    int taken = 0;

    QByteArray operator()(quint32 lba)
    {
        reads.append(lba);
        if (lba != wanted)
            return QByteArray(RAW_SECTOR_BYTES, '~');
        const char fill = answers.at(taken++);
        return fill == '!' ? QByteArray() : QByteArray(RAW_SECTOR_BYTES, fill);
    }
};

struct Vote {
    QByteArray bytes;
    SectorResult record;
};

Vote vote(Script& script, int maxReads = 20)
{
    Vote result;
    const bool abort = false;
    result.bytes = voteOnSector(std::ref(script), script.wanted, maxReads, abort, result.record);
    return result;
}

QByteArray filled(char fill)
{
    return QByteArray(RAW_SECTOR_BYTES, fill);
}

} // namespace

TEST(SectorVote, EqualReadsAreCleanWithoutRetries)
{
    Script script{"aa"};
    const Vote v = vote(script);
    EXPECT_EQ(v.bytes, filled('a'));
    EXPECT_TRUE(v.record.clean);
    EXPECT_FALSE(v.record.bad);
    EXPECT_EQ(v.record.retries, 0);
    EXPECT_EQ(v.record.lba, 7U);
    EXPECT_EQ(script.reads, (QList<quint32>{7, 7}));
}

TEST(SectorVote, AFailedFirstReadIsBadSilenceAtOnce)
{
    Script script{"!"};
    const Vote v = vote(script);
    EXPECT_EQ(v.bytes, filled('\0'));
    EXPECT_TRUE(v.record.bad);
    EXPECT_EQ(script.reads.size(), 1);
}

TEST(SectorVote, ThreeEqualReadsEndTheVoting)
{
    Script script{"abbb"};
    const Vote v = vote(script);
    EXPECT_EQ(v.bytes, filled('b'));
    EXPECT_FALSE(v.record.bad);
    EXPECT_FALSE(v.record.clean);
    EXPECT_EQ(v.record.retries, 3);
    EXPECT_EQ(script.reads, (QList<quint32>{7, 7, 6, 7, 6, 7})) << "the neighbour moves the head";
}

TEST(SectorVote, SectorZeroHasSectorOneAsItsNeighbour)
{
    Script script{"abbb", 0};
    vote(script);
    EXPECT_EQ(script.reads, (QList<quint32>{0, 0, 1, 0, 1, 0}));
}

TEST(SectorVote, TwoEqualReadsAreAcceptedAtTheEnd)
{
    Script script{"acbcd"};
    const Vote v = vote(script, 5);
    EXPECT_EQ(v.bytes, filled('c'));
    EXPECT_FALSE(v.record.bad);
    EXPECT_EQ(v.record.retries, 4);
}

TEST(SectorVote, AllDifferentIsBadAndTheLowestBytesWin)
{
    Script script{"dcba"};
    const Vote v = vote(script, 4);
    EXPECT_EQ(v.bytes, filled('a'));
    EXPECT_TRUE(v.record.bad);
}

TEST(SectorVote, OnATieOfTwoTheLowestBytesWin)
{
    Script script{"bcbc"};
    const Vote v = vote(script, 4);
    EXPECT_EQ(v.bytes, filled('b'));
    EXPECT_FALSE(v.record.bad);
}

TEST(SectorVote, WithTwoReadsAMismatchEndsWithTheLowerOne)
{
    Script script{"ba"};
    const Vote v = vote(script, 2);
    EXPECT_EQ(v.bytes, filled('a'));
    EXPECT_TRUE(v.record.bad);
    EXPECT_EQ(v.record.retries, 1);
    EXPECT_EQ(script.reads.size(), 2);
}

TEST(SectorVote, FailedRereadsCountAsRetriesAndCastNoVote)
{
    Script script{"a!!!"};
    const Vote v = vote(script, 4);
    EXPECT_EQ(v.bytes, filled('a'));
    EXPECT_TRUE(v.record.bad);
    EXPECT_EQ(v.record.retries, 3);
}

TEST(SectorVote, AbortEndsTheVoting)
{
    Script script{"ab"};
    SectorResult record;
    const bool abort = true;
    EXPECT_EQ(voteOnSector(std::ref(script), 7, 20, abort, record), filled('a'));
    EXPECT_TRUE(record.bad);
}
