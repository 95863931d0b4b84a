#include "metadata/lookup/Xmcd.h"

#include <QDebug>
#include <QMap>
#include <QStringTokenizer>

namespace {

const QLatin1String discTitleField("DTITLE=");
const QLatin1String yearField("DYEAR=");
const QLatin1String genreField("DGENRE=");
const QLatin1String trackField("TTITLE");

QStringView restOf(QStringView line, QLatin1String field)
{
    return line.mid(field.size()).trimmed();
}

void readDiscTitle(QStringView value, GnuDbResult& result)
{
    const QLatin1String separator(" / ");
    const qsizetype found = value.indexOf(separator);
    if (found >= 0)
        result.artist = value.left(found).trimmed().toString();
    result.album = (found < 0 ? value : value.mid(found + separator.size()).trimmed()).toString();
}

void readTrackTitle(QStringView line, QMap<int, QString>& titles)
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
    // Line by line where the text stands: it may be of millions of lines.
    for (const QStringView untrimmed : QStringView(text).tokenize(u'\n')) {
        const QStringView line = untrimmed.trimmed();
        if (line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(discTitleField))
            readDiscTitle(restOf(line, discTitleField), result);
        else if (line.startsWith(yearField))
            result.year = restOf(line, yearField).toString();
        else if (line.startsWith(genreField))
            result.genre = restOf(line, genreField).toString();
        else if (line.startsWith(trackField))
            readTrackTitle(line, titles);
    }

    result.tracks.reserve(titles.size());
    // Unsigned, for the highest key of all has no successor.
    for (auto title = titles.cbegin(); title != titles.cend(); ++title)
        result.tracks.append({static_cast<int>(static_cast<quint32>(title.key()) + 1), title.value()});
    qDebug().noquote() << "[GnuDB] parsed:" << result.artist << "/" << result.album << "year=" << result.year
                       << "tracks=" << result.tracks.size();
    return result;
}
