// Windows' own tables of code pages.

#include "base/LocalCodePage.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace {

/// The bytes from one to another, each decoded alone.
QString decodedEach(int first, int last, const char* codePage)
{
    QString all;
    for (int byte = first; byte <= last; ++byte)
        all += decodeCodePage(QByteArray(1, static_cast<char>(byte)), codePage);
    return all;
}

constexpr char16_t none = 0xFFFD;

UINT playedPage = 0;

UINT WINAPI playAcp()
{
    return playedPage;
}

} // namespace

extern "C" {

decltype(&GetACP) __imp_GetACP = playAcp;

} // extern "C"

TEST(WindowsLocalCodePage, AsciiIsTheSameEverywhere)
{
    QString ascii;
    for (char16_t unit = 1; unit < 0x80; ++unit)
        ascii += unit;
    for (const char* page : {"CP932", "CP1252", "CP1251", "CP936", "CP949", "CP950"})
        EXPECT_EQ(decodedEach(1, 0x7F, page), ascii) << page;
}

TEST(WindowsLocalCodePage, WesternEuropean)
{
    EXPECT_EQ(decodedEach(0x80, 0x8F, "CP1252"), QStringLiteral("€\uFFFD‚ƒ„…†‡ˆ‰Š‹Œ\uFFFDŽ\uFFFD"));
    EXPECT_EQ(decodedEach(0x90, 0x9F, "CP1252"), QStringLiteral("\uFFFD‘’“”•–—˜™š›œ\uFFFDžŸ"));
    QString latin;
    for (char16_t unit = 0xA0; unit <= 0xFF; ++unit)
        latin += unit;
    EXPECT_EQ(decodedEach(0xA0, 0xFF, "CP1252"), latin);
}

TEST(WindowsLocalCodePage, Cyrillic)
{
    EXPECT_EQ(decodedEach(0x80, 0x9F, "CP1251"), QStringLiteral("ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—\uFFFD™љ›њќћџ"));
    EXPECT_EQ(decodedEach(0xA8, 0xA8, "CP1251"), QStringLiteral("Ё"));
    EXPECT_EQ(decodedEach(0xB8, 0xB8, "CP1251"), QStringLiteral("ё"));
    QString alphabet;
    for (char16_t unit = 0x410; unit <= 0x44F; ++unit)
        alphabet += unit;
    EXPECT_EQ(decodedEach(0xC0, 0xFF, "CP1251"), alphabet);
}

TEST(WindowsLocalCodePage, Japanese)
{
    QString halfWidth;
    for (char16_t unit = 0xFF61; unit <= 0xFF9F; ++unit)
        halfWidth += unit;
    EXPECT_EQ(decodedEach(0xA1, 0xDF, "CP932"), halfWidth);
    // Hiragana lie at 829F to 82F1, katakana at 8340 to 8396 with a gap at 7F.
    EXPECT_EQ(decodeCodePage("\x82\x9f\x82\xf1\x83\x40\x83\x7e\x83\x80\x83\x96", "CP932"),
              QStringLiteral("ぁんァミムヶ"));
    EXPECT_EQ(decodeCodePage("\x88\x9f\xe0\x40\xea\xa4", "CP932"), QStringLiteral("亜漾熙"));
    // What Microsoft's page has beyond the standard: circled digits, rows of NEC and IBM.
    EXPECT_EQ(decodeCodePage("\x87\x40\x87\x54\xfa\x5c\xfb\xfc", "CP932"), QStringLiteral("①Ⅰ纊髙"));
    EXPECT_EQ(decodeCodePage("\x81\x60\x81\x7c", "CP932"), QStringLiteral("～－"))
        << "the wave dash and the minus have the wide forms";
    EXPECT_EQ(decodeCodePage("\x5c\x7e", "CP932"), QStringLiteral("\\~")) << "no yen sign";
}

TEST(WindowsLocalCodePage, OtherPagesOfTheEastAreThere)
{
    EXPECT_EQ(decodeCodePage("\xC7\xD1\xB1\xDB", "CP949"), QStringLiteral("한글"));
    EXPECT_EQ(decodeCodePage("\xD6\xD0\xCE\xC4", "CP936"), QStringLiteral("中文"));
    EXPECT_EQ(decodeCodePage("\xA4\xA4\xA4\xE5", "CP950"), QStringLiteral("中文"));
}

TEST(WindowsLocalCodePage, BytesThatMeanNothingBecomeTheReplacementCharacter)
{
    EXPECT_EQ(decodeCodePage("a\xffz", "CP932"), QStringLiteral("a\uFFFDz"));
    EXPECT_EQ(decodeCodePage("a\xfd\xfe", "CP932"), QStringLiteral("a\uFFFD\uFFFD"));
    EXPECT_EQ(decodeCodePage("a\x80z", "CP932"), QStringLiteral("a\uFFFDz"));
    EXPECT_EQ(decodeCodePage("\x93\xfa\x93", "CP932"), QStringLiteral("日\uFFFD"))
        << "half a pair at the end";
    EXPECT_EQ(decodeCodePage("\x93\x20\x93\xfa", "CP932"), QStringLiteral("\uFFFD 日"))
        << "a first half alone leaves the byte behind it";
    EXPECT_EQ(decodeCodePage("\xff", "CP949"), QString(none));
}

TEST(WindowsLocalCodePage, ManyBytesAreDecodedAndZerosAreBytes)
{
    EXPECT_EQ(decodeCodePage(QByteArray("a\0b", 3), "CP932"), QString(QStringLiteral("a") + QChar(0) + u'b'));
    EXPECT_EQ(decodeCodePage({}, "CP932"), QString());
    EXPECT_EQ(decodeCodePage(QByteArray("\x93\xfa").repeated(100'000), "CP932"),
              QString(100'000, QChar(u'日')));
    EXPECT_EQ(decodeCodePage(QByteArray("\x93\xfa").repeated(50'000) + '\x93', "CP932"),
              QString(50'000, QChar(u'日')) + none);
}

TEST(WindowsLocalCodePage, ANameThatIsNoneCountsAsWesternEuropean)
{
    for (const char* name : {"", "CP", "CP0", "CP1", "CP2", "CP3", "CP42", "CP99999", "932", "cp932",
                             "CP932x", "UTF-8", "Shift_JIS", "CP-932", "CP18446744073709552548"})
        EXPECT_EQ(decodeCodePage("\x93\xfa", name), QStringLiteral("“ú")) << name;
}

TEST(WindowsLocalCodePage, TheSystemsOwnPageIsTheLocalOne)
{
    for (const auto& [page, text] : {std::pair{1252U, u"Ä"}, {1251U, u"Д"}, {932U, u"ﾄ"}}) {
        playedPage = page;
        EXPECT_EQ(decodeLocal8Bit("\xc4"), QString::fromUtf16(text)) << page;
    }
    playedPage = 65001; // a person's choice of UTF-8 for the whole system
    EXPECT_EQ(decodeLocal8Bit("\xe6\x97\xa5 \xff"), QStringLiteral("日 \uFFFD"));
}
