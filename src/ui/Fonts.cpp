#include "ui/Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QStringList>

namespace {

void substitute(const QString& family, const QStringList& substitutes)
{
    if (!QFontDatabase::hasFamily(family))
        QFont::insertSubstitutions(family, substitutes);
}

// Qt asks FreeType to thicken the stems of CFF fonts. Meant for dark text on
// white, it makes the Japanese glyphs of this dark window look bold.
void drawCffStemsAsDesigned()
{
    constexpr char properties[] = "FREETYPE_PROPERTIES";
    if (qEnvironmentVariableIsEmpty(properties))
        qputenv(properties, "cff:no-stem-darkening=1");
}

} // namespace

void installFontSubstitutes()
{
    drawCffStemsAsDesigned();
    substitute(QStringLiteral("Segoe UI"),
               {QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans CJK JP")});
    substitute(QStringLiteral("Consolas"),
               {QStringLiteral("Noto Sans Mono"), QStringLiteral("Noto Sans Mono CJK JP")});
}
