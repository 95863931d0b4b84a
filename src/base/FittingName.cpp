#include "base/FittingName.h"

#include <QFile>
#include <QTextBoundaryFinder>

QString fittingName(QString name, qsizetype bytes)
{
    name.remove(QChar(u'\0'));
    // A unit takes a byte at least. Where a character ends is told by the one
    // behind it, which has two units at most; a long rest is not looked at.
    name.truncate(bytes + 2);
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, name);
    characters.toEnd();
    qsizetype length = name.size();
    while (length > 0 && QFile::encodeName(name.left(length)).size() > bytes)
        length = characters.toPreviousBoundary();
    return name.left(length);
}

QString fittingPath(const QString& basePath, const QString& extension)
{
    const qsizetype nameStart = basePath.lastIndexOf(u'/') + 1;
    const qsizetype room = mostNameBytes - QFile::encodeName(extension).size();
    return basePath.left(nameStart) + fittingName(basePath.mid(nameStart), room) + extension;
}
