// A locale of the environment stands for the language of the system here.

#include "CueTitle.h"

#include <gtest/gtest.h>

TEST(LinuxCueCodePage, FollowsTheLanguageOfTheSystem)
{
    EXPECT_EQ(titleReadIn("ja_JP.UTF-8", "\x93\xFA\x96\x7B\x8C\xEA"), "日本語");
    EXPECT_EQ(titleReadIn("ko_KR.UTF-8", "\xC7\xD1\xB1\xDB"), "한글");
    EXPECT_EQ(titleReadIn("zh_CN.UTF-8", "\xD6\xD0\xCE\xC4"), "中文");
    EXPECT_EQ(titleReadIn("zh_TW.UTF-8", "\xA4\xA4\xA4\xE5"), "中文");
    EXPECT_EQ(titleReadIn("ru_RU.UTF-8", "\xCC\xE8\xF0"), "Мир");
}
