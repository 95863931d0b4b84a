// The code page in which a sheet that is not UTF-8 is read. What a locale means
// is settled when a process starts, so that each is tried in one of its own.

#include "support/DiscMaker.h"
#include "support/ProcessLocale.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// The album title of a sheet with these bytes, as a process of this locale reads it.
QByteArray titleReadIn(const char* locale, const QByteArray& title)
{
    const QTemporaryDir folder;
    const QString sheet = writeFile(folder.path(), QStringLiteral("disc.cue"), "TITLE \"" + title + "\"\n");
    QProcess probe;
    probe.setProcessEnvironment(environmentOfLocale(locale));
    probe.start(QStringLiteral(TARVEL_CUE_TEXT_PROBE), {sheet});
    if (!probe.waitForFinished(60000) || probe.exitCode() != 0)
        return "no answer: " + probe.readAllStandardError();
    return probe.readAllStandardOutput().trimmed();
}

} // namespace

// Bytes 80 to 9F are control characters in Latin-1.
TEST(CueCodePage, IsWindowsWesternEuropeanRatherThanLatin1)
{
    for (const char* locale : {"C.UTF-8", "C", "en_US.UTF-8", "de_DE.UTF-8", "xx_YY.UTF-8"})
        EXPECT_EQ(titleReadIn(locale, "\x80 \x93\x8Cuvre\x94 \x8A\x9F \xE9"), "€ “Œuvre” ŠŸ é") << locale;
}

TEST(CueCodePage, FollowsTheLanguageOfTheSystem)
{
    EXPECT_EQ(titleReadIn("ja_JP.UTF-8", "\x93\xFA\x96\x7B\x8C\xEA"), "日本語");
    EXPECT_EQ(titleReadIn("ko_KR.UTF-8", "\xC7\xD1\xB1\xDB"), "한글");
    EXPECT_EQ(titleReadIn("zh_CN.UTF-8", "\xD6\xD0\xCE\xC4"), "中文");
    EXPECT_EQ(titleReadIn("zh_TW.UTF-8", "\xA4\xA4\xA4\xE5"), "中文");
    EXPECT_EQ(titleReadIn("ru_RU.UTF-8", "\xCC\xE8\xF0"), "Мир");
}

TEST(CueCodePage, IsNotAskedWhereTheSheetIsUtf8)
{
    EXPECT_EQ(titleReadIn("ja_JP.UTF-8", "Œuvre €"), "Œuvre €");
}
