#include "rip/OutputNaming.h"

#include "base/Settings.h"
#include "base/UniqueFolder.h"
#include "rip/RipWorker.h"

#include <QRegularExpression>

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
