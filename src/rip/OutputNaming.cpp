#include "rip/OutputNaming.h"

#include "base/Settings.h"
#include "base/UniqueFolder.h"
#include "rip/RipWorker.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextBoundaryFinder>

namespace {

QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

} // namespace

QString trackName(const TrackInfo& track)
{
    return track.title.isEmpty() ? QStringLiteral("Track %1").arg(track.number) : track.title;
}

QString withoutForbiddenCharacters(QString text)
{
    static const QRegularExpression forbidden(QStringLiteral(R"([\\/:*?"<>|])"));
    return text.remove(forbidden);
}

QString cleanNamePart(const QString& text)
{
    QString name = withoutForbiddenCharacters(text);
    while (name.endsWith(u' ') || name.endsWith(u'.'))
        name.chop(1);
    return name.trimmed();
}

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

QString RipWorker::outputBasePath(int trackNumber, const QString& title) const
{
    QString name = namingRule.trimmed();
    if (name.isEmpty())
        name = QLatin1String(settings::defaultNamingRule);
    name.replace(QLatin1String("{track}"), twoDigits(trackNumber));
    name.replace(QLatin1String("{title}"), cleanNamePart(title));
    name.replace(QLatin1String("{artist}"), cleanNamePart(artist));
    name.replace(QLatin1String("{album}"), cleanNamePart(album));
    name.replace(QLatin1String("{year}"), cleanNamePart(year.left(4)));
    name = cleanNamePart(name);
    if (name.isEmpty())
        name = twoDigits(trackNumber) + QStringLiteral(". ") + cleanNamePart(title);
    return outputFolder + u'/' + name;
}

QString RipWorker::uniqueFolder(const QString& parent, const QString& name)
{
    return makeUniqueFolder(parent, name).path;
}
