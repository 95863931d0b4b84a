// The code page in which a sheet that is not UTF-8 is read. What a locale means
// is settled when a process starts, so that each is tried in one of its own.

#include "CueTitle.h"

#include <gtest/gtest.h>

// Bytes 80 to 9F are control characters in Latin-1.
TEST(CueCodePage, IsWindowsWesternEuropeanRatherThanLatin1)
{
    for (const char* locale : {"C.UTF-8", "C", "en_US.UTF-8", "de_DE.UTF-8", "xx_YY.UTF-8"})
        EXPECT_EQ(titleReadIn(locale, "\x80 \x93\x8Cuvre\x94 \x8A\x9F \xE9"), "€ “Œuvre” ŠŸ é") << locale;
}

TEST(CueCodePage, IsNotAskedWhereTheSheetIsUtf8)
{
    EXPECT_EQ(titleReadIn("ja_JP.UTF-8", "Œuvre €"), "Œuvre €");
}
