// The page that stands for a locale.

#include "base/LocalCodePage.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr char oneByte[] = "C4"; ///< a letter of its own in every page of single bytes

/// The bytes, in hexadecimal, as a start of its own decodes them where the environment
/// names a locale and the installed ones are those of a folder.
QString decodedWith(const QString& locale, const QTemporaryDir& locales, const char* bytes)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"LANG", "LANGUAGE", "LC_MESSAGES", "LC_NUMERIC", "LC_CTYPE"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("LOCPATH"), locales.path());
    environment.insert(QStringLiteral("LC_ALL"), locale);
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.start(QStringLiteral(TARVEL_CODE_PAGE_PROBE), {QLatin1String(bytes)});
    if (!probe.waitForFinished(60000) || probe.exitCode() != 0)
        return QStringLiteral("no answer: ") + QString::fromUtf8(probe.readAllStandardError());
    return QString::fromUtf8(probe.readAllStandardOutput()).trimmed();
}

/// In a locale that is made of the one that every system has: only its name
/// counts here.
QString decodedIn(const QString& locale, const char* bytes = oneByte)
{
    const QTemporaryDir locales;
    const QString known = QStringLiteral("/usr/lib/locale/C.utf8");
    EXPECT_TRUE(QDir(known).exists());
    EXPECT_TRUE(QFile::link(known, locales.filePath(locale)));
    return decodedWith(locale, locales, bytes);
}

/// In a locale that is not installed.
QString decodedWithout(const QString& locale)
{
    return decodedWith(locale, QTemporaryDir(), oneByte);
}

} // namespace

// 0xC4 is U+0414 in CP1251 and U+00C4 in CP1252.
TEST(LinuxLocalCodePage, LanguagesWrittenInCyrillicHaveTheirPage)
{
    for (const char* language : {"ru_RU", "uk_UA", "be_BY", "bg_BG", "sr_RS", "mk_MK", "kk_KZ", "mn_MN",
                                 "ky_KG", "tg_TJ", "tt_RU", "ce_RU"}) {
        EXPECT_EQ(decodedIn(QLatin1String(language) + QStringLiteral(".UTF-8")), QStringLiteral("Д"))
            << language;
    }
}

TEST(LinuxLocalCodePage, TheScriptThatALocaleNamesStandsAboveTheLanguages)
{
    for (const char* latin : {"sr_RS.UTF-8@latin", "sr_RS@latin", "be_BY.UTF-8@latin"})
        EXPECT_EQ(decodedIn(QLatin1String(latin)), QStringLiteral("Ä")) << latin;
    EXPECT_EQ(decodedIn(QStringLiteral("uz_UZ.UTF-8@cyrillic")), QStringLiteral("Д"));
    EXPECT_EQ(decodedIn(QStringLiteral("uz_UZ.UTF-8")), QStringLiteral("Ä"));
}

TEST(LinuxLocalCodePage, ALocaleThatIsNotInstalledNamesItsScriptAsWell)
{
    EXPECT_EQ(decodedWithout(QStringLiteral("sr_RS.UTF-8")), QStringLiteral("Д"));
    for (const char* latin : {"sr_RS.UTF-8@latin", "sr_RS@latin"})
        EXPECT_EQ(decodedWithout(QLatin1String(latin)), QStringLiteral("Ä")) << latin;
    EXPECT_EQ(decodedWithout(QStringLiteral("uz_UZ.UTF-8@cyrillic")), QStringLiteral("Д"));
}

TEST(LinuxLocalCodePage, OtherLanguagesHaveThePagesOfTheirOwn)
{
    EXPECT_EQ(decodedIn(QStringLiteral("de_DE.UTF-8")), QStringLiteral("Ä"));
    EXPECT_EQ(decodedIn(QStringLiteral("el_GR.UTF-8")), QStringLiteral("Ä"));
    EXPECT_EQ(decodedIn(QStringLiteral("ja_JP.UTF-8")), QStringLiteral("ﾄ")); // half-width katakana in CP932
}

// The first character of "한글" and of "中文", as the pages have them.
TEST(LinuxLocalCodePage, KoreaAndBothScriptsOfChinaHaveThePagesOfTheirOwn)
{
    EXPECT_EQ(decodedIn(QStringLiteral("ko_KR.UTF-8"), "C7D1"), QStringLiteral("한"));
    for (const char* simplified : {"zh_CN.UTF-8", "zh_SG.UTF-8"})
        EXPECT_EQ(decodedIn(QLatin1String(simplified), "D6D0"), QStringLiteral("中")) << simplified;
    for (const char* traditional : {"zh_TW.UTF-8", "zh_HK.UTF-8", "zh_MO.UTF-8"})
        EXPECT_EQ(decodedIn(QLatin1String(traditional), "A4A4"), QStringLiteral("中")) << traditional;
}

TEST(LinuxLocalCodePage, ByteThatMeansNothingBecomesTheReplacementCharacter)
{
    EXPECT_EQ(decodeCodePage("a\xff"
                             "b",
                             "CP932"),
              QStringLiteral("a\uFFFDb"));
}

TEST(LinuxLocalCodePage, TruncatedPairAtTheEndDoesNotHang)
{
    EXPECT_EQ(decodeCodePage("a\x93", "CP932"), QStringLiteral("a\uFFFD"));
}
