#include "ui/Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QGlyphRun>
#include <QTextLayout>

#include <gtest/gtest.h>

#include <string>

namespace {

/// The families that a text in the given one is drawn in, in the order of its pieces and
/// in small letters, as Qt keeps the names of substitutes.
std::string drawnIn(const QString& text, const char* family)
{
    QTextLayout layout(text, QFont(QLatin1String(family), 9));
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    QStringList families;
    for (const QGlyphRun& run : layout.glyphRuns())
        families << run.rawFont().familyName().toLower();
    families.removeDuplicates();
    return families.join(QStringLiteral(", ")).toStdString();
}

struct Look {
    const char* asked;
    const char* latin;
    const char* japanese;
};

} // namespace

TEST(Fonts, JapaneseIsDrawnInATrueTypeFaceAndLatinInItsOwn)
{
    installFontSubstitutes();
    for (const auto& [asked, latin, japanese] :
         {Look{"Segoe UI", "noto sans", "vl pgothic"}, Look{"Consolas", "noto sans mono", "vl gothic"}}) {
        // The tests' own packages bring these faces.
        ASSERT_TRUE(QFontDatabase::hasFamily(QLatin1String(latin))) << latin;
        ASSERT_TRUE(QFontDatabase::hasFamily(QLatin1String(japanese))) << japanese;
        EXPECT_EQ(drawnIn(QStringLiteral("Sector"), asked), latin);
        EXPECT_EQ(drawnIn(QStringLiteral("要注意セクタ"), asked), japanese);
    }
}
