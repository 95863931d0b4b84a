// Names are counted in bytes of UTF-8 here.

#include "base/FittingName.h"

#include <gtest/gtest.h>

TEST(LinuxFittingName, LongNamesEndAtAWholeCharacterWithin255Bytes)
{
    const QString japanese = QString(300, QChar(u'あ'));
    const QString path = fittingPath(QStringLiteral("/out/") + japanese, QStringLiteral(".flac"));
    const QString name = path.mid(5);
    EXPECT_TRUE(name.endsWith(QStringLiteral(".flac")));
    EXPECT_EQ(name.size() - 5, (255 - 5) / 3) << "three bytes a character";
    EXPECT_EQ(name.left(name.size() - 5), japanese.left(name.size() - 5));
}

TEST(LinuxFittingName, ACharacterOfSeveralCodePointsIsNotCut)
{
    const QString family = QStringLiteral("👨‍👩‍👧");
    const QString name =
        fittingPath(QLatin1Char('/') + family.repeated(40), QStringLiteral(".mp3")).mid(1).chopped(4);
    EXPECT_LE(name.toUtf8().size(), 251);
    EXPECT_EQ(name.size() % family.size(), 0);
    EXPECT_GT(name.size(), 0);
}

TEST(LinuxFittingName, ANameOfMillionsOfCharactersIsNoWorkOfHours)
{
    const QString path =
        fittingPath(QStringLiteral("/out/") + QString(4'000'000, QChar(u'漢')), QStringLiteral(".flac"));
    EXPECT_EQ(path, QStringLiteral("/out/") + QString((255 - 5) / 3, QChar(u'漢')) + QStringLiteral(".flac"));
}

TEST(LinuxFittingName, TheLastCharacterIsWholeWhateverStandsBehindIt)
{
    EXPECT_EQ(fittingName(QString(247, u'a') + QStringLiteral("👍👍🏽")),
              QString(247, u'a') + QStringLiteral("👍"));
    EXPECT_EQ(fittingName(QString(251, u'a') + QStringLiteral("👍🏽")), QString(251, u'a'))
        << "a colour of the hand";
}
