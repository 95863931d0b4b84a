#include "base/FittingName.h"

#include <gtest/gtest.h>

TEST(FittingPath, ShortNamesAreLeftAlone)
{
    EXPECT_EQ(fittingPath(QStringLiteral("/out/01. Song"), QStringLiteral(".flac")),
              QStringLiteral("/out/01. Song.flac"));
}

// The last whole character within the room may end right in front of one that
// takes two units, or of a mark that belongs to it.
TEST(FittingName, TheLastCharacterIsWholeWhateverStandsBehindIt)
{
    const QString filled(254, u'a');
    EXPECT_EQ(fittingName(filled + QStringLiteral("bc")), filled + u'b');
    EXPECT_EQ(fittingName(filled + QStringLiteral("b🎸")), filled + u'b');
    EXPECT_EQ(fittingName(filled + QStringLiteral("b\u0301")), filled) << "an accent of the b";
    EXPECT_EQ(fittingName(filled + QStringLiteral("b🏽")), filled) << "a colour of the b";
    EXPECT_EQ(fittingName(QString(255, u'a')), QString(255, u'a'));
    EXPECT_EQ(fittingName(QString::fromUtf8("a\0b", 3)), QStringLiteral("ab"));
    EXPECT_EQ(fittingName(QString()), QString());
}
