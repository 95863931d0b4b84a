#include "disc/SenseData.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

DriveFailure failureOf(int key, int code = 0, int qualifier = 0)
{
    return failureOfSense({key, code, qualifier, false});
}

} // namespace

TEST(SenseData, TheFixedFormatIsRead)
{
    const std::vector<quint8> bytes{0xF0, 0, 0xE3, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0x11, 0x05};
    const auto sense = decodeSense(bytes);
    ASSERT_TRUE(sense);
    EXPECT_EQ(sense->key, 3) << "the flags beside the key are no part of it";
    EXPECT_EQ(sense->code, 0x11);
    EXPECT_EQ(sense->qualifier, 0x05);
    EXPECT_FALSE(sense->deferred);
}

TEST(SenseData, TheFormatWithDescriptorsIsRead)
{
    const auto sense = decodeSense(std::vector<quint8>{0x72, 0xF2, 0x3A, 0x01});
    ASSERT_TRUE(sense);
    EXPECT_EQ(sense->key, 2);
    EXPECT_EQ(sense->code, 0x3A);
    EXPECT_EQ(sense->qualifier, 0x01);
    EXPECT_FALSE(sense->deferred);
}

TEST(SenseData, AWordOnAnEarlierCommandSaysNothingOfThisOne)
{
    for (const quint8 format : {quint8{0x71}, quint8{0x73}}) {
        const auto sense = decodeSense(std::vector<quint8>{format, 0x03, 0x03, 0});
        ASSERT_TRUE(sense);
        EXPECT_TRUE(sense->deferred);
        EXPECT_EQ(failureOfSense(*sense), DriveFailure::unknown);
    }
}

TEST(SenseData, WhatIsCutOffIsZeroOrNothing)
{
    const auto keyAlone = decodeSense(std::vector<quint8>{0x70, 0, 0x03});
    ASSERT_TRUE(keyAlone);
    EXPECT_EQ(keyAlone->key, 3);
    EXPECT_EQ(keyAlone->code, 0);
    EXPECT_EQ(keyAlone->qualifier, 0);
    EXPECT_FALSE(decodeSense(std::vector<quint8>{0x70, 0}));
    EXPECT_FALSE(decodeSense(std::vector<quint8>{0x72}));
    EXPECT_FALSE(decodeSense({}));
    EXPECT_FALSE(decodeSense(std::array<quint8, 32>{})) << "nothing was written";
}

TEST(SenseData, TheKeyTellsWhatTheSectorsAre)
{
    EXPECT_EQ(failureOf(notReadyKey, 0x04, 0x01), DriveFailure::becomingReady);
    EXPECT_EQ(failureOf(notReadyKey, 0x04, 0x02), DriveFailure::notReady);
    EXPECT_EQ(failureOf(notReadyKey, 0x3A, 0x01), DriveFailure::notReady);
    EXPECT_EQ(failureOf(mediumErrorKey), DriveFailure::unreadable);
    EXPECT_EQ(failureOf(hardwareErrorKey), DriveFailure::unreadable);
    EXPECT_EQ(failureOf(blankCheckKey), DriveFailure::unreadable);
    EXPECT_EQ(failureOf(illegalRequestKey, 0x64, 0), DriveFailure::unreadable);
    EXPECT_EQ(failureOf(illegalRequestKey, 0x21, 0), DriveFailure::unknown);
    EXPECT_EQ(failureOf(unitAttentionKey), DriveFailure::notReady);
    EXPECT_EQ(failureOf(abortedCommandKey), DriveFailure::timedOut);
    EXPECT_EQ(failureOf(noSenseKey), DriveFailure::unknown);
}

TEST(SenseData, NothingAndARecoveredErrorAreNoErrors)
{
    for (int key = 0; key <= 0xF; ++key)
        EXPECT_EQ(tellsOfError({key, 0x11, 0x05, false}), key > 1) << key;
}
