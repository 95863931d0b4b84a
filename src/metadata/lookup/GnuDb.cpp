#include "metadata/lookup/GnuDb.h"

#include "disc/DigitSum.h"
#include "metadata/http/Http.h"
#include "metadata/http/HttpTransport.h"
#include "metadata/http/ServiceHosts.h"

#include <QDebug>
#include <QStringList>
#include <QStringTokenizer>
#include <QVarLengthArray>

#include <optional>
#include <utility>

namespace {

constexpr int loggedCharacters = 200;
constexpr int codeLength = 3;
constexpr qsizetype wordsOfUse = 3;
constexpr int codeExactMatch = 200;
constexpr int codeExactMatches = 210;
constexpr int codeInexactMatches = 211;

struct Candidate {
    QString category;
    QString discId;
    QByteArray body; ///< the record, when the candidate was taken on its account
};

using WordList = QVarLengthArray<QStringView, wordsOfUse>;

// The words that any answer has a use for; an empty one is a word, too.
WordList firstWords(QStringView line)
{
    WordList words;
    for (const QStringView word : line.tokenize(u' ')) {
        words.append(word);
        if (words.size() == wordsOfUse)
            break;
    }
    return words;
}

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

/// A candidate where it stands in the answer.
struct CandidateView {
    QStringView category;
    QStringView discId;

    Candidate copy() const { return {category.toString(), discId.toString(), {}}; }
};

/// Walks over the candidates of an answer. An answer may have millions of lines,
/// so each is looked at where it stands.
class CandidateLines {
public:
    explicit CandidateLines(const QString& answer) : text(answer) { skipLine(); }

    std::optional<CandidateView> next()
    {
        while (!text.isEmpty()) {
            const QStringView line = text.left(text.indexOf(u'\n')).trimmed();
            skipLine();
            if (line == u".")
                break;
            if (line.isEmpty())
                continue;
            const WordList parts = firstWords(line);
            if (parts.size() >= 2)
                return CandidateView{parts[0], parts[1]};
        }
        text = {};
        return std::nullopt;
    }

private:
    void skipLine()
    {
        const qsizetype end = text.indexOf(u'\n');
        text = end < 0 ? QStringView() : text.mid(end + 1);
    }

    QStringView text; ///< what is not looked at yet
};

qsizetype titleLines(const QByteArray& record)
{
    qsizetype count = 0;
    const QString text = QString::fromUtf8(record);
    for (const QStringView line : QStringView(text).tokenize(u'\n'))
        count += line.trimmed().startsWith(QLatin1String("TTITLE")) ? 1 : 0;
    return count;
}

Candidate chooseCandidate(const QString& answer, qsizetype need)
{
    CandidateLines counted(answer);
    const std::optional<CandidateView> first = counted.next();
    qsizetype all = first ? 1 : 0;
    while (counted.next())
        ++all;
    qDebug() << "[GnuDB] candidates:" << all;
    if (!first)
        return {};

    CandidateLines lines(answer);
    while (const std::optional<CandidateView> line = lines.next()) {
        if (httpTransport().isStopped())
            return {};
        Candidate candidate = line->copy();
        candidate.body = gnudbRead(candidate.category, candidate.discId);
        if (candidate.body.isEmpty())
            continue;
        const qsizetype count = titleLines(candidate.body);
        qDebug().noquote() << "[GnuDB] candidate" << candidate.category << candidate.discId
                           << "tracks=" << count << "(need" << need << ")";
        if (count == need) {
            qDebug() << "[GnuDB] track count matched!";
            return candidate;
        }
    }
    qDebug() << "[GnuDB] no track count match, using first candidate";
    return first->copy();
}

Candidate exactMatch(QStringView statusLine)
{
    const WordList parts = firstWords(statusLine);
    return parts.size() >= 3 ? Candidate{parts[1].toString(), parts[2].toString(), {}} : Candidate{};
}

// Takes the answer, which is not to lie in memory beside the record that it leads to.
Candidate candidateOf(QByteArray answer, qsizetype need)
{
    const QString text = QString::fromUtf8(answer);
    answer.clear();
    qDebug().noquote() << "[GnuDB] query response:" << text.left(loggedCharacters);

    const QStringView statusLine = QStringView(text).left(text.indexOf(u'\n')).trimmed();
    const int code = statusLine.left(codeLength).toInt();
    if (code == codeExactMatch)
        return exactMatch(statusLine);
    if (code == codeExactMatches || code == codeInexactMatches)
        return chooseCandidate(text, need);
    qWarning() << "[GnuDB] no match (code=" << code << ")";
    return {};
}

GnuDbResult parseAnswer(QByteArray body)
{
    QString text = QString::fromUtf8(body);
    body.clear();
    text.remove(0, text.indexOf(u'\n') + 1);
    return parseXmcd(text);
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
    QByteArray answer = gnudbGet(url);
    if (answer.isEmpty()) {
        qWarning() << "[GnuDB] query request failed";
        return {};
    }
    Candidate chosen = candidateOf(std::move(answer), disc.tracks.size());
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
    return parseAnswer(std::move(chosen.body));
}
