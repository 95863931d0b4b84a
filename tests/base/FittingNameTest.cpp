#include "base/FittingName.h"

#include <gtest/gtest.h>

TEST(FittingPath, ShortNamesAreLeftAlone)
{
    EXPECT_EQ(fittingPath(QStringLiteral("/out/01. Song"), QStringLiteral(".flac")),
              QStringLiteral("/out/01. Song.flac"));
}

TEST(FittingPath, LongNamesEndAtAWholeCharacterWithin255Bytes)
{
    const QString japanese = QString(300, QChar(u'あ'));
    const QString path = fittingPath(QStringLiteral("/out/") + japanese, QStringLiteral(".flac"));
    const QString name = path.mid(5);
    EXPECT_TRUE(name.endsWith(QStringLiteral(".flac")));
    EXPECT_EQ(name.size() - 5, (255 - 5) / 3) << "three bytes a character";
    EXPECT_EQ(name.left(name.size() - 5), japanese.left(name.size() - 5));
}

TEST(FittingPath, ACharacterOfSeveralCodePointsIsNotCut)
{
    const QString family = QStringLiteral("👨‍👩‍👧");
    const QString name =
        fittingPath(QLatin1Char('/') + family.repeated(40), QStringLiteral(".mp3")).mid(1).chopped(4);
    EXPECT_LE(name.toUtf8().size(), 251);
    EXPECT_EQ(name.size() % family.size(), 0);
    EXPECT_GT(name.size(), 0);
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
    EXPECT_EQ(fittingName(QString(247, u'a') + QStringLiteral("👍👍🏽")),
              QString(247, u'a') + QStringLiteral("👍"));
    EXPECT_EQ(fittingName(QString(251, u'a') + QStringLiteral("👍🏽")), QString(251, u'a'))
        << "a colour of the hand";
    EXPECT_EQ(fittingName(QString(255, u'a')), QString(255, u'a'));
    EXPECT_EQ(fittingName(QString::fromUtf8("a\0b", 3)), QStringLiteral("ab"));
    EXPECT_EQ(fittingName(QString()), QString());
}

TEST(FittingPath, ANameOfMillionsOfCharactersIsNoWorkOfHours)
{
    const QString path =
        fittingPath(QStringLiteral("/out/") + QString(4'000'000, QChar(u'漢')), QStringLiteral(".flac"));
    EXPECT_EQ(path, QStringLiteral("/out/") + QString((255 - 5) / 3, QChar(u'漢')) + QStringLiteral(".flac"));
}
