#include "support/ServiceAnswers.h"

#include "base/ByteOrder.h"

#include <QBuffer>
#include <QImage>

QByteArray gnudb::exactMatch(const ServedRecord& record)
{
    return "200 "
           + (record.category + QLatin1Char(' ') + record.discId + QLatin1Char(' ') + record.discTitle)
                 .toUtf8()
           + "\r\n";
}

QByteArray gnudb::matchList(int code, const QList<ServedRecord>& records)
{
    QByteArray text = QByteArray::number(code)
                      + (code == 210 ? " Found exact matches" : " Found inexact matches")
                      + ", list follows (until terminating `.')\r\n";
    for (const ServedRecord& record : records) {
        text += (record.category + QLatin1Char(' ') + record.discId + QLatin1Char(' ') + record.discTitle)
                    .toUtf8()
                + "\r\n";
    }
    return text + ".\r\n";
}

QByteArray gnudb::noMatch()
{
    return "202 No match found\r\n";
}

QByteArray gnudb::recordAnswer(const ServedRecord& record)
{
    QByteArray text =
        "210 " + (record.category + QLatin1Char(' ') + record.discId).toUtf8()
        + " CD database entry follows (until terminating `.')\r\n# xmcd\r\n#\r\n# Track frame offsets:\r\n";
    for (qsizetype i = 0; i < record.titles.size(); ++i)
        text += "#\t" + QByteArray::number(150 + 15'000 * i) + "\r\n";
    text += "#\r\n# Disc length: 2863 seconds\r\n#\r\n# Revision: 3\r\n# Processed by: a server\r\n"
            "# Submitted via: a client\r\n#\r\n";
    text += "DISCID=" + record.discId.toUtf8() + "\r\nDTITLE=" + record.discTitle.toUtf8()
            + "\r\nDYEAR=" + record.year.toUtf8() + "\r\nDGENRE=" + record.genre.toUtf8() + "\r\n";
    for (qsizetype i = 0; i < record.titles.size(); ++i)
        text += "TTITLE" + QByteArray::number(i) + "=" + record.titles[i].toUtf8() + "\r\n";
    text += "EXTD= YEAR: 1901\r\n";
    for (qsizetype i = 0; i < record.titles.size(); ++i)
        text += "EXTT" + QByteArray::number(i) + "=\r\n";
    return text + "PLAYORDER=\r\n.\r\n";
}

QByteArray accuraterip::pressing(quint32 discId1, quint32 discId2, quint32 cddbId,
                                 const QList<Entry>& entries)
{
    constexpr qsizetype headBytes = 13;
    constexpr qsizetype entryBytes = 9;
    QByteArray bytes(headBytes + entryBytes * entries.size(), '\0');
    char* write = bytes.data();
    write[0] = static_cast<char>(entries.size());
    byteorder::writeLittle(write + 1, discId1);
    byteorder::writeLittle(write + 5, discId2);
    byteorder::writeLittle(write + 9, cddbId);
    write += headBytes;
    for (const Entry& entry : entries) {
        write[0] = static_cast<char>(entry.confidence);
        byteorder::writeLittle(write + 1, entry.crc);
        byteorder::writeLittle(write + 5, entry.crc450);
        write += entryBytes;
    }
    return bytes;
}

QByteArray picture(int width, int height)
{
    QImage drawn(width, height, QImage::Format_RGB32);
    drawn.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    drawn.save(&buffer, "PNG");
    return buffer.data();
}
