#include "codecs/BlockPieces.h"

#include <gtest/gtest.h>

namespace {

/// What was handed on: the first sample of each piece, and its frames.
using Pieces = QList<std::pair<qint32, std::size_t>>;

const AudioBlock sevenFrames{{0, 1, 10, 11, 20, 21, 30, 31, 40, 41, 50, 51, 60, 61}, 7};

} // namespace

TEST(BlockPieces, ABlockIsHandedOnInOrderAndToItsLastFrame)
{
    Pieces pieces;
    EXPECT_TRUE(passOnInPieces(sevenFrames, 2, 3, [&](const qint32* samples, std::size_t frames) {
        pieces.append({*samples, frames});
        return true;
    }));
    EXPECT_EQ(pieces, (Pieces{{0, 3}, {30, 3}, {60, 1}}));
}

TEST(BlockPieces, NothingFollowsAPieceThatIsRefused)
{
    Pieces pieces;
    EXPECT_FALSE(passOnInPieces(sevenFrames, 2, 2, [&](const qint32* samples, std::size_t frames) {
        pieces.append({*samples, frames});
        return pieces.size() < 2;
    }));
    EXPECT_EQ(pieces, (Pieces{{0, 2}, {20, 2}}));
}

TEST(BlockPieces, ABlockWithoutFramesHasNoPieces)
{
    EXPECT_TRUE(passOnInPieces(AudioBlock(), 2, 3, [](const qint32*, std::size_t) { return false; }));
}

TEST(BlockPieces, TheHeldFramesAreTheFewerOfTheCountAndTheSamples)
{
    EXPECT_EQ(heldFrames(sevenFrames, 2), 7u);
    EXPECT_EQ(heldFrames(sevenFrames, 4), 3u);
    EXPECT_EQ(heldFrames(AudioBlock{sevenFrames.samples, 5}, 2), 5u);
    // Without channels a sample is a frame.
    EXPECT_EQ(heldFrames(AudioBlock{sevenFrames.samples, 20}, 0), 14u);
}
