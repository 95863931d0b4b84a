#include "metadata/GnuDb.h"

#include <QDebug>
#include <QMap>
#include <QStringList>

namespace {

const QLatin1String discTitleField("DTITLE=");
const QLatin1String yearField("DYEAR=");
const QLatin1String genreField("DGENRE=");
const QLatin1String trackField("TTITLE");

QString restOf(const QString& line, QLatin1String field)
{
    return line.mid(field.size()).trimmed();
}

void readDiscTitle(const QString& value, GnuDbResult& result)
{
    const QLatin1String separator(" / ");
    const qsizetype found = value.indexOf(separator);
    if (found >= 0)
        result.artist = value.left(found).trimmed();
    result.album = found < 0 ? value : value.mid(found + separator.size()).trimmed();
}

void readTrackTitle(const QString& line, QMap<int, QString>& titles)
{
    const qsizetype equals = line.indexOf(QLatin1Char('='));
    if (equals <= trackField.size())
        return;
    bool isNumber = false;
    const int key = line.mid(trackField.size(), equals - trackField.size()).toInt(&isNumber);
    if (isNumber)
        titles[key] += line.mid(equals + 1).trimmed();
}

} // namespace

GnuDbResult parseXmcd(const QString& text)
{
    GnuDbResult result;
    QMap<int, QString> titles;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& untrimmed : lines) {
        const QString line = untrimmed.trimmed();
        if (line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(discTitleField))
            readDiscTitle(restOf(line, discTitleField), result);
        else if (line.startsWith(yearField))
            result.year = restOf(line, yearField);
        else if (line.startsWith(genreField))
            result.genre = restOf(line, genreField);
        else if (line.startsWith(trackField))
            readTrackTitle(line, titles);
    }

    // Unsigned, for the highest key of all has no successor.
    for (auto title = titles.cbegin(); title != titles.cend(); ++title)
        result.tracks.append({static_cast<int>(static_cast<quint32>(title.key()) + 1), title.value()});
    qDebug().noquote() << "[GnuDB] parsed:" << result.artist << "/" << result.album << "year=" << result.year
                       << "tracks=" << result.tracks.size();
    return result;
}
