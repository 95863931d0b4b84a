#include "support/Language.h"

#include <gtest/gtest.h>

TEST(Language, OneIsJapaneseAndTwoIsEnglish)
{
    speak(1);
    EXPECT_TRUE(isJapanese());
    EXPECT_EQ(pickLang("完了", "Finish"), QStringLiteral("完了"));
    speak(2);
    EXPECT_FALSE(isJapanese());
    EXPECT_EQ(pickLang("完了", "Finish"), QStringLiteral("Finish"));
}

TEST(Language, ANewModeTakesEffectAtTheNextStart)
{
    speak(2);
    setLanguageMode(1);
    EXPECT_FALSE(isJapanese());
    EXPECT_EQ(languageMode(), 1);
    EXPECT_EQ(QSettings().value(QLatin1String(settings::language)).toInt(), 1);
    loadLanguage();
    EXPECT_TRUE(isJapanese());
}
