#include "disc/CueSheet.h"

#include "base/LocalCodePage.h"
#include "disc/DiscModel.h"

#include <QDir>
#include <QStringList>

#include <cstring>
#include <optional>

namespace {

QString quotedValue(const QString& line)
{
    const qsizetype first = line.indexOf(u'"');
    const qsizetype last = line.lastIndexOf(u'"');
    return first < last ? line.mid(first + 1, last - first - 1) : QString();
}

QString dateValue(const QString& line)
{
    return line.split(u' ').constLast().trimmed().remove(u'"');
}

std::optional<quint32> indexSector(const QString& line)
{
    const QStringList fields = line.split(u' ', Qt::SkipEmptyParts);
    if (fields.size() < 3)
        return std::nullopt;
    const QStringList time = fields[2].split(u':');
    if (time.size() != 3)
        return std::nullopt;
    const auto minute = static_cast<quint32>(time[0].toInt());
    const auto second = static_cast<quint32>(time[1].toInt());
    const auto frame = static_cast<quint32>(time[2].toInt());
    return (minute * 60 + second) * SECTORS_PER_SECOND + frame;
}

int trackNumber(const QString& line)
{
    return line.split(u' ', Qt::SkipEmptyParts).value(1).toInt();
}

} // namespace

QString decodeCueText(const QByteArray& bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes.mid(3));
    if (bytes.startsWith("\xFF\xFE")) {
        QString text((bytes.size() - 2) / 2, QChar());
        std::memcpy(text.data(), bytes.constData() + 2, static_cast<size_t>(text.size()) * sizeof(QChar));
        const qsizetype end = text.indexOf(QChar(u'\0'));
        return end < 0 ? text : text.left(end);
    }
    const QString text = QString::fromUtf8(bytes);
    return text.contains(QChar::ReplacementCharacter) ? decodeLocal8Bit(bytes) : text;
}

CueSheet scanCueSheet(const QString& text, const QString& directory)
{
    CueSheet sheet;
    QString file;
    bool isWave = false;

    const QStringList lines = text.split(u'\n');
    for (const QString& part : lines) {
        const QString line = part.trimmed();
        const auto is = [&line](const char* keyword) {
            return line.startsWith(QLatin1String(keyword), Qt::CaseInsensitive);
        };
        const bool inTrack = !sheet.entries.isEmpty();

        if (is("PERFORMER")) {
            sheet.albumArtist = quotedValue(line);
        } else if (is("TITLE") && !inTrack) {
            sheet.albumTitle = quotedValue(line);
        } else if (is("REM DATE")) {
            sheet.albumYear = dateValue(line);
        } else if (is("FILE")) {
            file = QDir(directory).absoluteFilePath(quotedValue(line));
            isWave = line.toUpper().contains(QLatin1String("WAVE"));
        } else if (is("TRACK")) {
            sheet.entries.append({trackNumber(line), file, isWave, 0, QString()});
        } else if (is("TITLE")) {
            sheet.entries.last().title = quotedValue(line);
        } else if (is("INDEX 01") && inTrack) {
            if (const auto sector = indexSector(line))
                sheet.entries.last().index01 = *sector;
        }
    }
    return sheet;
}
