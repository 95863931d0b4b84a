#include "base/Language.h"
#include "base/Settings.h"

#include <QLocale>
#include <QSettings>

#include <gtest/gtest.h>

namespace {

void loadWith(int stored)
{
    QSettings().setValue(QLatin1String(settings::language), stored);
    loadLanguage();
}

const bool systemIsJapanese = QLocale::system().language() == QLocale::Japanese;

} // namespace

TEST(Language, OneIsJapaneseAndTwoIsEnglish)
{
    loadWith(1);
    EXPECT_TRUE(isJapanese());
    EXPECT_EQ(pickLang("完了", "Finish"), QStringLiteral("完了"));
    loadWith(2);
    EXPECT_FALSE(isJapanese());
    EXPECT_EQ(pickLang("完了", "Finish"), QStringLiteral("Finish"));
}

TEST(Language, ModeOutOfRangeCountsAsAutomaticAndStaysInTheStore)
{
    for (const int mode : {7, -1}) {
        loadWith(mode);
        EXPECT_EQ(languageMode(), 0);
        EXPECT_EQ(isJapanese(), systemIsJapanese);
        EXPECT_EQ(QSettings().value(QLatin1String(settings::language)).toInt(), mode);
    }
}

TEST(Language, AutomaticFollowsTheSystem)
{
    loadWith(0);
    EXPECT_EQ(isJapanese(), systemIsJapanese);
}

TEST(Language, ANewModeTakesEffectAtTheNextStart)
{
    loadWith(2);
    setLanguageMode(1);
    EXPECT_FALSE(isJapanese());
    EXPECT_EQ(languageMode(), 1);
    EXPECT_EQ(QSettings().value(QLatin1String(settings::language)).toInt(), 1);
    loadLanguage();
    EXPECT_TRUE(isJapanese());
}
