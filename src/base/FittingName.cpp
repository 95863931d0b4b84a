#include "base/FittingName.h"

#include "base/FileNames.h"

#include <QTextBoundaryFinder>

namespace {

QString cutName(QString name, qsizetype room)
{
    name.remove(QChar(u'\0'));
    // A unit takes a byte at least. Where a character ends is told by the one
    // behind it, which has two units at most; a long rest is not looked at.
    name.truncate(room + 2);
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, name);
    characters.toEnd();
    qsizetype length = name.size();
    while (length > 0 && nameLength(name.left(length)) > room)
        length = characters.toPreviousBoundary();
    return name.left(length);
}

} // namespace

QString fittingName(const QString& name)
{
    return harmlessName(cutName(harmlessName(name), mostNameLength));
}

QString fittingPath(const QString& basePath, const QString& extension)
{
    const qsizetype nameStart = basePath.lastIndexOf(u'/') + 1;
    const qsizetype room = mostNameLength - nameLength(extension);
    const auto harmless = [&extension](const QString& name) {
        return harmlessName(name + extension).chopped(extension.size());
    };
    // A cut may leave something else of a harmless name.
    const QString cut = cutName(harmless(basePath.mid(nameStart)), room);
    return basePath.left(nameStart) + cutName(harmless(cut), room) + extension;
}
