#include "codecs/StreamChange.h"

#include "codecs/ogg/ChainFile.h"
#include "support/LogCapture.h"

#include <cmath>

static QList<qint32> mapped(const QList<qint32>& frame, quint16 to)
{
    const auto from = static_cast<quint16>(frame.size());
    const AudioBlock block = mapChannels({frame, 1}, from, to, 32);
    EXPECT_EQ(block.frames, 1u);
    return block.samples;
}

TEST(MapChannels, OneChannelIsHeardAsLoudOnBothSides)
{
    EXPECT_EQ(mapped({1000}, 2), (QList<qint32>{1000, 1000}));
    EXPECT_EQ(mapped({-7}, 6), (QList<qint32>{0, 0, -7, 0, 0, 0}));
}

TEST(MapChannels, OfTwoChannelsOneIsTheMean)
{
    EXPECT_EQ(mapped({1000, 500}, 1), QList<qint32>{750});
    EXPECT_EQ(mapped({INT32_MIN, INT32_MIN}, 1), QList<qint32>{INT32_MIN});
    EXPECT_EQ(mapped({INT32_MAX, INT32_MAX}, 1), QList<qint32>{INT32_MAX});
}

// Half of each side and the whole centre are twice as much as there is room for.
TEST(MapChannels, OfThreeChannelsTheCentreWeighsAsMuchAsBothSides)
{
    EXPECT_EQ(mapped({1000, 2000, 4000}, 1), QList<qint32>{2750});
}

TEST(MapChannels, TwoChannelsAreTheFrontOfMore)
{
    EXPECT_EQ(mapped({3, 4}, 6), (QList<qint32>{3, 4, 0, 0, 0, 0}));
    EXPECT_EQ(mapped({3, 4}, 4), (QList<qint32>{3, 4, 0, 0}));
}

// Left, right, centre, low, back left and right. The centre and the back at half the
// power, and all so much lower that 1 + 2 * 0.7071 does not pass full scale.
TEST(MapChannels, SurroundIsFoldedIntoTwo)
{
    constexpr int unit = 1000000;
    const double all = 1 + std::sqrt(2.0);
    const auto share = [&](double gain) { return static_cast<qint32>(std::lround(unit * gain / all)); };
    const qint32 half = share(std::sqrt(0.5));
    EXPECT_EQ(mapped({unit, 0, 0, 0, 0, 0}, 2), (QList<qint32>{share(1), 0}));
    EXPECT_EQ(mapped({0, unit, 0, 0, 0, 0}, 2), (QList<qint32>{0, share(1)}));
    EXPECT_EQ(mapped({0, 0, unit, 0, 0, 0}, 2), (QList<qint32>{half, half}));
    EXPECT_EQ(mapped({0, 0, 0, unit, 0, 0}, 2), (QList<qint32>{0, 0}));
    EXPECT_EQ(mapped({0, 0, 0, 0, unit, 0}, 2), (QList<qint32>{half, 0}));
    EXPECT_EQ(mapped({0, 0, 0, 0, 0, unit}, 2), (QList<qint32>{0, half}));
}

// Eight have sides besides the back; seven have sides and one centre behind.
TEST(MapChannels, SpeakersThatAreThereKeepTheirSoundAndOthersAreHeardNearby)
{
    EXPECT_EQ(mapped({1, 2, 3, 4, 5, 6}, 8), (QList<qint32>{1, 2, 3, 4, 5, 6, 0, 0}));
    EXPECT_EQ(mapped({10, 20, 30, 40, 50, 60, 70, 80}, 6), (QList<qint32>{5, 10, 15, 20, 60, 70}));
    EXPECT_EQ(mapped({0, 0, 0, 0, 1000, 2000}, 7), (QList<qint32>{0, 0, 0, 0, 0, 1000, 2000}));
    EXPECT_EQ(mapped({1, 2, 3}, 5), (QList<qint32>{1, 2, 3, 0, 0}));
}

TEST(MapChannels, BeyondEightChannelsEachKeepsItsPlace)
{
    EXPECT_EQ(mapped({1, 2, 3, 4, 5, 6, 7, 8, 9}, 2), (QList<qint32>{1, 2}));
    EXPECT_EQ(mapped({1, 2}, 9), (QList<qint32>{1, 2, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(MapChannels, ValuesAreRoundedToTheWidth)
{
    constexpr qint32 step = 65536;
    EXPECT_EQ(mapChannels({{3 * step, 4 * step, -5 * step, 0}, 2}, 2, 1, 16).samples,
              (QList<qint32>{4 * step, -2 * step}));
}

// Files in which a stream of another kind follows the first.
class StreamChangeTest : public EncoderTest, public ::testing::WithParamInterface<const char*> {
protected:
    static constexpr quint64 frames = 30000;

    QString named(const char* start) const { return file(start) + QString::fromLatin1(GetParam()); }

    Decoded decodeAlone(const AudioFormat& format) const
    {
        makeChain(named("alone"), {format}, frames);
        return decode(named("alone"));
    }

    /// The middle of the second of two equal halves, in which no edge is heard.
    static QList<qint32> middle(const QList<qint32>& samples, int channels)
    {
        return samples.mid(samples.size() - channels * 15000, channels * 5000);
    }

    // Opus knows but one rate, and the others are heard at 44100.
    static quint32 rate() { return qstrcmp(GetParam(), ".opus") == 0 ? 48000 : 44100; }
};

class ChannelChangeTest : public StreamChangeTest {};

TEST_P(ChannelChangeTest, GoesOnInTheChannelsThatWereAnnounced)
{
    const Decoded one = decodeAlone({rate(), 1, 16});
    const Decoded two = decodeAlone({rate(), 2, 16});
    makeChain(named("up"), {{rate(), 2, 16}, {rate(), 1, 16}}, frames);
    const Decoded up = decode(named("up"));
    EXPECT_EQ(up.format, two.format);
    EXPECT_EQ(up.frames(), one.frames() + two.frames());
    const QList<qint32> heard = middle(one.samples, 1);
    const QList<qint32> both = middle(up.samples, 2);
    for (qsizetype i = 0; i < heard.size(); ++i) {
        ASSERT_NEAR(both[2 * i], heard[i], 1e-3 * INT32_MAX) << i;
        ASSERT_EQ(both[2 * i + 1], both[2 * i]) << i;
    }

    makeChain(named("down"), {{rate(), 1, 16}, {rate(), 2, 16}}, frames);
    const Decoded down = decode(named("down"));
    EXPECT_EQ(down.format, one.format);
    EXPECT_EQ(down.frames(), one.frames() + two.frames());
    const QList<qint32> pairs = middle(two.samples, 2);
    const QList<qint32> mean = middle(down.samples, 1);
    for (qsizetype i = 0; i < mean.size(); ++i)
        ASSERT_NEAR(mean[i], (double{1} * pairs[2 * i] + pairs[2 * i + 1]) / 2, 1e-3 * INT32_MAX) << i;
}

INSTANTIATE_TEST_SUITE_P(Kinds, ChannelChangeTest, ::testing::Values(".mp3", ".aac", ".ogg", ".opus"),
                         [](const auto& instance) { return std::string(instance.param).substr(1); });

class RateChangeTest : public StreamChangeTest {};

TEST_P(RateChangeTest, EndsThereWithAWordInTheLog)
{
    const Decoded alone = decodeAlone({44100, 2, 16});
    const LogCapture log;
    makeChain(named("a"), {{44100, 2, 16}, {32000, 2, 16}}, frames);
    const Decoded decoded = decode(named("a"));
    EXPECT_EQ(decoded.frames(), alone.frames());
    EXPECT_EQ(decoded.samples, alone.samples);
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral(
                                  "[Decode] rate changes from 44100 to 32000 Hz -> the rest is left out")});
}

INSTANTIATE_TEST_SUITE_P(Kinds, RateChangeTest, ::testing::Values(".mp3", ".aac", ".ogg"),
                         [](const auto& instance) { return std::string(instance.param).substr(1); });
