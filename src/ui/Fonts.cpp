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

void installFontSubstitutes()
{
    substitute(QStringLiteral("Segoe UI"), {QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans CJK JP")});
    substitute(QStringLiteral("Consolas"),
               {QStringLiteral("Noto Sans Mono"), QStringLiteral("Noto Sans Mono CJK JP")});
}
