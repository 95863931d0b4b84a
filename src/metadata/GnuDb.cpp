#include "metadata/GnuDb.h"

#include "disc/DigitSum.h"
#include "metadata/Http.h"
#include "metadata/ServiceHosts.h"

#include <QDebug>
#include <QStringList>

#include <utility>

namespace {

constexpr int loggedCharacters = 200;
constexpr int codeLength = 3;
constexpr int codeExactMatch = 200;
constexpr int codeExactMatches = 210;
constexpr int codeInexactMatches = 211;

struct Candidate {
    QString category;
    QString discId;
    QByteArray body; ///< the record, when the candidate was taken on its account
};

QString commandUrl(const QString& command)
{
    return QLatin1String(services::gnuDb)
           + QStringLiteral("/~cddb/cddb.cgi?cmd=%1&hello=user+localhost+TarvelCDRipper+1.0&proto=6")
                 .arg(command);
}

// Not the id of the AccurateRip address: this one knows nothing of the lead-in.
QString discIdFromSectors(const DiscToc& disc)
{
    quint32 sum = 0;
    for (const TrackInfo& track : disc.tracks)
        sum += digitSum(track.startLba / SECTORS_PER_SECOND);
    const quint32 seconds = disc.totalSectors / SECTORS_PER_SECOND;
    const quint32 id = ((sum % 255) << 24) | (seconds << 8) | static_cast<quint32>(disc.tracks.size());
    return QStringLiteral("%1").arg(id, 8, 16, QLatin1Char('0'));
}

QString queryUrl(const DiscToc& disc, const QString& id)
{
    QStringList offsets;
    for (const TrackInfo& track : disc.tracks)
        offsets.append(QString::number(track.startLba));
    return commandUrl(QStringLiteral("cddb+query+%1+%2+%3+%4")
                          .arg(id)
                          .arg(disc.tracks.size())
                          .arg(offsets.join(QLatin1Char('+')))
                          .arg(disc.totalSectors / SECTORS_PER_SECOND));
}

QList<Candidate> candidatesOf(const QStringList& lines)
{
    QList<Candidate> candidates;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line == QLatin1String("."))
            break;
        const QStringList parts = line.split(QLatin1Char(' '));
        if (parts.size() >= 2)
            candidates.append({parts[0], parts[1], {}});
    }
    return candidates;
}

qsizetype titleLines(const QByteArray& record)
{
    qsizetype count = 0;
    const QStringList lines = QString::fromUtf8(record).split(QLatin1Char('\n'));
    for (const QString& line : lines)
        count += line.trimmed().startsWith(QLatin1String("TTITLE")) ? 1 : 0;
    return count;
}

Candidate chooseCandidate(const QList<Candidate>& candidates, qsizetype need)
{
    qDebug() << "[GnuDB] candidates:" << candidates.size();
    for (const Candidate& candidate : candidates) {
        const QByteArray body = gnudbRead(candidate.category, candidate.discId);
        if (body.isEmpty())
            continue;
        const qsizetype count = titleLines(body);
        qDebug().noquote() << "[GnuDB] candidate" << candidate.category << candidate.discId
                           << "tracks=" << count << "(need" << need << ")";
        if (count == need) {
            qDebug() << "[GnuDB] track count matched!";
            return {candidate.category, candidate.discId, body};
        }
    }
    if (candidates.isEmpty())
        return {};
    qDebug() << "[GnuDB] no track count match, using first candidate";
    return candidates.first();
}

GnuDbResult parseAnswer(const QByteArray& body)
{
    const QString text = QString::fromUtf8(body);
    return parseXmcd(text.mid(text.indexOf(QLatin1Char('\n')) + 1));
}

Candidate exactMatch(const QString& statusLine)
{
    const QStringList parts = statusLine.split(QLatin1Char(' '));
    return parts.size() >= 3 ? Candidate{parts[1], parts[2], {}} : Candidate{};
}

} // namespace

QByteArray gnudbRead(const QString& category, const QString& discId)
{
    const QString url = commandUrl(QStringLiteral("cddb+read+%1+%2").arg(category, discId));
    qDebug().noquote() << "[GnuDB] read URL:" << url;
    return gnudbGet(url);
}

GnuDbResult gnudbLookup(const DiscToc& disc)
{
    if (disc.tracks.isEmpty())
        return {};
    const QString id = discIdFromSectors(disc);
    qDebug().noquote() << "[GnuDB] DiscID:" << id << "tracks:" << disc.tracks.size()
                       << "secs:" << disc.totalSectors / SECTORS_PER_SECOND;

    const QString url = queryUrl(disc, id);
    qDebug().noquote() << "[GnuDB] query URL:" << url;
    const QByteArray answer = gnudbGet(url);
    if (answer.isEmpty()) {
        qWarning() << "[GnuDB] query request failed";
        return {};
    }
    const QString text = QString::fromUtf8(answer);
    qDebug().noquote() << "[GnuDB] query response:" << text.left(loggedCharacters);

    const QStringList lines = text.split(QLatin1Char('\n'));
    const QString statusLine = lines.first().trimmed();
    const int code = statusLine.left(codeLength).toInt();
    Candidate chosen;
    if (code == codeExactMatch) {
        chosen = exactMatch(statusLine);
    } else if (code == codeExactMatches || code == codeInexactMatches) {
        chosen = chooseCandidate(candidatesOf(lines), disc.tracks.size());
    } else {
        qWarning() << "[GnuDB] no match (code=" << code << ")";
        return {};
    }

    if (chosen.body.isEmpty()) {
        if (chosen.category.isEmpty() || chosen.discId.isEmpty())
            return {};
        qDebug().noquote() << "[GnuDB] found: category=" << chosen.category << "discid=" << chosen.discId;
        chosen.body = gnudbRead(chosen.category, chosen.discId);
        if (chosen.body.isEmpty()) {
            qWarning() << "[GnuDB] read request failed";
            return {};
        }
    }
    return parseAnswer(chosen.body);
}
