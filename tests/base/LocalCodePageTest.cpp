#include "base/LocalCodePage.h"

#include <gtest/gtest.h>

TEST(LocalCodePage, ShiftJisIsDecoded)
{
    EXPECT_EQ(decodeCodePage("\x93\xfa\x96\x7b\x8c\xea", "CP932"), QStringLiteral("日本語"));
}

TEST(LocalCodePage, LongTextCrossesTheBuffer)
{
    QByteArray bytes;
    QString expected;
    for (int i = 0; i < 5000; ++i) {
        bytes += "\xe9";
        expected += u'é';
    }
    EXPECT_EQ(decodeCodePage(bytes, "CP1252"), expected);
}

TEST(LocalCodePage, UnknownNameCountsAsWesternEuropean)
{
    EXPECT_EQ(decodeCodePage("\xe9", "no such page"), QStringLiteral("é"));
}
