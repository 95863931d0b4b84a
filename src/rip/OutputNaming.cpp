#include "rip/OutputNaming.h"

#include "rip/RipOrder.h"

#include <QRegularExpression>

namespace {

/// The text without forbidden characters, and without blanks and full stops at its end.
QString cleanNamePart(const QString& text)
{
    QString name = withoutForbiddenCharacters(text);
    while (name.endsWith(u' ') || name.endsWith(u'.'))
        name.chop(1);
    return name.trimmed();
}

} // namespace

QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

QString trackName(const TrackInfo& track)
{
    return track.title.isEmpty() ? QStringLiteral("Track %1").arg(track.number) : track.title;
}

QString withoutForbiddenCharacters(QString text)
{
    static const QRegularExpression forbidden(QStringLiteral(R"([\\/:*?"<>|])"));
    return text.remove(forbidden);
}

QString outputBasePath(const RipOrder& order, int trackNumber, const QString& title)
{
    QString name = order.namingRule.trimmed();
    if (name.isEmpty())
        name = QLatin1String(settings::defaultNamingRule);
    name.replace(QLatin1String("{track}"), twoDigits(trackNumber));
    name.replace(QLatin1String("{title}"), cleanNamePart(title));
    name.replace(QLatin1String("{artist}"), cleanNamePart(order.artist));
    name.replace(QLatin1String("{album}"), cleanNamePart(order.album));
    name.replace(QLatin1String("{year}"), cleanNamePart(order.year.left(4)));
    name = cleanNamePart(name);
    if (name.isEmpty())
        name = twoDigits(trackNumber) + QStringLiteral(". ") + cleanNamePart(title);
    return order.outputFolder + u'/' + name;
}
