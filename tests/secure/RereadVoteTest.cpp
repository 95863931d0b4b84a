#include "secure/RereadVote.h"

#include <gtest/gtest.h>

namespace {

/// Gives the reads in turn, the last one for ever.
class Reads {
public:
    explicit Reads(QList<SectorRead> inTurn) : reads(std::move(inTurn)) {}
    SectorRead operator()() { return reads.size() > 1 ? reads.takeFirst() : reads.constFirst(); }

private:
    QList<SectorRead> reads;
};

const QByteArray a = "aaaa";
const QByteArray b = "bbbb";
const QByteArray c = "cccc";
const QByteArray nothing;

} // namespace

TEST(RereadVote, TwoEqualUnflaggedReadsConfirmInC2Mode)
{
    const RereadOutcome outcome = rereadVote(Reads({{a}, {b}, {a}, {c}}), {}, true, 20);
    EXPECT_TRUE(outcome.confirmed);
    EXPECT_EQ(outcome.data, a);
    EXPECT_EQ(outcome.reads, 3);
}

TEST(RereadVote, OneReadCannotReachTheThresholdInC2Mode)
{
    const RereadOutcome outcome = rereadVote(Reads({{a}}), {}, true, 1);
    EXPECT_FALSE(outcome.confirmed);
    EXPECT_EQ(outcome.data, a);
    EXPECT_EQ(outcome.reads, 1);
}

TEST(RereadVote, AFlaggedReadNeverConfirms)
{
    const RereadOutcome outcome = rereadVote(Reads({{a, 1}, {a, 1}, {b, 0}, {a, 2}, {b, 0}}), {}, true, 20);
    EXPECT_TRUE(outcome.confirmed);
    EXPECT_EQ(outcome.data, b);
    EXPECT_EQ(outcome.reads, 5);
}

TEST(RereadVote, WithAllReadsFlaggedTheMostFrequentIsKeptUnconfirmed)
{
    const RereadOutcome outcome = rereadVote(Reads({{a, 9}, {c, 9}, {b, 9}, {c, 9}, {nothing}}), {}, true, 6);
    EXPECT_FALSE(outcome.confirmed);
    EXPECT_EQ(outcome.data, c);
    EXPECT_EQ(outcome.reads, 6);
}

TEST(RereadVote, AnUnflaggedReadIsPreferredToMoreFrequentFlaggedOnes)
{
    const RereadOutcome outcome = rereadVote(Reads({{a, 9}, {a, 9}, {b, 0}, {a, 9}}), {}, true, 4);
    EXPECT_FALSE(outcome.confirmed);
    EXPECT_EQ(outcome.data, b);
}

TEST(RereadVote, EveryReadFailedGivesNoData)
{
    const RereadOutcome outcome = rereadVote(Reads({{nothing}}), {}, true, 20);
    EXPECT_FALSE(outcome.confirmed);
    EXPECT_TRUE(outcome.data.isEmpty());
    EXPECT_EQ(outcome.reads, 20);
}

TEST(RereadVote, CompareModeNeedsThreeEqualReads)
{
    const RereadOutcome outcome = rereadVote(Reads({{a}, {a}, {a}}), {}, false, 20);
    EXPECT_TRUE(outcome.confirmed);
    EXPECT_EQ(outcome.reads, 3);
}

TEST(RereadVote, SeedsCountAsReadsInCompareMode)
{
    const RereadOutcome outcome = rereadVote(Reads({{b}, {c}, {b}}), {a, b}, false, 20);
    EXPECT_TRUE(outcome.confirmed);
    EXPECT_EQ(outcome.data, b);
    EXPECT_EQ(outcome.reads, 3);
}

TEST(RereadVote, OneReadThatEqualsASeedIsChosenUnconfirmedInCompareMode)
{
    const RereadOutcome outcome = rereadVote(Reads({{b}}), {a, b}, false, 1);
    EXPECT_FALSE(outcome.confirmed);
    EXPECT_EQ(outcome.data, b);
}

TEST(RereadVote, C2CountsMeanNothingInCompareMode)
{
    const RereadOutcome outcome = rereadVote(Reads({{a, 50}}), {}, false, 20);
    EXPECT_TRUE(outcome.confirmed);
    EXPECT_EQ(outcome.reads, 3);
}

TEST(RereadVote, TheLowestBytesWinATie)
{
    const QByteArray high("\xFF\x01", 2);
    const QByteArray low("\x7F\x01", 2);
    const RereadOutcome outcome = rereadVote(Reads({{high}, {low}, {nothing}}), {}, false, 4);
    EXPECT_FALSE(outcome.confirmed);
    EXPECT_EQ(outcome.data, low);
    const RereadOutcome flagged = rereadVote(Reads({{high, 1}, {low, 1}, {nothing}}), {}, true, 4);
    EXPECT_EQ(flagged.data, low);
}

TEST(RereadVote, FailedReadsAreSpentButDoNotVote)
{
    const RereadOutcome outcome = rereadVote(Reads({{nothing}, {a}, {nothing}, {a}}), {}, true, 20);
    EXPECT_TRUE(outcome.confirmed);
    EXPECT_EQ(outcome.reads, 4);
}
