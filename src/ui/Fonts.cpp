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

} // namespace

// Qt thickens the strokes of CFF faces such as Noto's Japanese ones, which look bold
// beside Latin: the TrueType faces stand before them, the clearer one first.
void installFontSubstitutes()
{
    substitute(QStringLiteral("Segoe UI"),
               {QStringLiteral("Noto Sans"), QStringLiteral("VL PGothic"), QStringLiteral("IPAexGothic"),
                QStringLiteral("Noto Sans CJK JP")});
    substitute(QStringLiteral("Consolas"),
               {QStringLiteral("Noto Sans Mono"), QStringLiteral("VL Gothic"), QStringLiteral("IPAexGothic"),
                QStringLiteral("Noto Sans Mono CJK JP")});
}
