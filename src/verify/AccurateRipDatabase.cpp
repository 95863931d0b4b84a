#include "verify/AccurateRipDatabase.h"

#include "base/ByteOrder.h"
#include "base/Language.h"
#include "metadata/http/Http.h"
#include "metadata/http/HttpStatus.h"
#include "metadata/http/ServiceHosts.h"

#include <QDebug>

#include <algorithm>
#include <exception>
#include <limits>

QHash<int, std::pair<quint32, quint32>> ripCrcs;
QHash<int, QList<quint32>> ripFrameWindows;

namespace {

constexpr qsizetype chunkHeaderBytes = 13;
constexpr qsizetype entryBytes = 9;
constexpr int httpNotFound = 404;

bool hasChecksum(const ArEntry& entry)
{
    return entry.crc != 0;
}

QString notInDatabase()
{
    return pickLang("このCD（プレス）はAccurateRipデータベースに登録されていません。",
                    "This disc (pressing) is not in the AccurateRip database.");
}

QString databaseAddress(const AccurateRipIds& ids)
{
    const QString digits = QStringLiteral("%1").arg(ids.discId1, 8, 16, QChar(u'0'));
    return QStringLiteral("%1/accuraterip/%2/%3/%4/%5.bin")
        .arg(QLatin1String(services::accurateRip), digits.mid(7, 1), digits.mid(6, 1), digits.mid(5, 1),
             accurateRipDiscId(ids));
}

bool isOfDisc(const char* header, const AccurateRipIds& ids)
{
    return static_cast<quint8>(header[0]) == ids.audioTracks
           && byteorder::readLittle<quint32>(header + 1) == ids.discId1
           && byteorder::readLittle<quint32>(header + 5) == ids.discId2
           && byteorder::readLittle<quint32>(header + 9) == ids.cddbId;
}

QString notReached()
{
    return pickLang("AccurateRipのサーバーに接続できませんでした。インターネット接続を確認してください。",
                    "Could not connect to the AccurateRip server. Please check your internet connection.");
}

bool fetchAndParse(const DiscToc& disc, QList<QList<ArEntry>>& tracks, QString& error, bool& unreachable)
{
    const AccurateRipIds ids = computeAccurateRipIds(disc);
    if (ids.audioTracks == 0) {
        error = pickLang("音声トラックがありません。", "There are no audio tracks.");
        return false;
    }
    const QString address = databaseAddress(ids);
    qDebug().noquote() << "[AccurateRip] fetch:" << address;
    int status = 0;
    const QByteArray body = httpGet(address, &status);
    qDebug() << "[AccurateRip] HTTP status:" << status << "bytes:" << body.size();
    if (status == httpNotFound) {
        error = notInDatabase();
        return false;
    }
    if (status == 0) {
        unreachable = true;
        error = notReached();
        return false;
    }
    if (status != httpStatusOk || body.isEmpty()) {
        unreachable = true;
        error =
            pickLang(
                "AccurateRipのサーバーからエラーが返りました（HTTP %1）。時間をおいて再度お試しください。",
                "The AccurateRip server returned an error (HTTP %1). Please try again later.")
                .arg(status);
        return false;
    }
    tracks = parseDbar(body, ids);
    const bool found = std::any_of(tracks.cbegin(), tracks.cend(), [](const QList<ArEntry>& entries) {
        return std::any_of(entries.cbegin(), entries.cend(), hasChecksum);
    });
    if (!found)
        error = notInDatabase();
    return found;
}

} // namespace

bool accurateRipVerify(const DiscToc& disc, QList<QList<ArEntry>>& tracks, QString& error, bool* networkError)
{
    bool ignored = false;
    bool& unreachable = networkError ? *networkError : ignored;
    tracks.clear();
    error.clear();
    unreachable = false;
    // A future would hand an exception on to the GUI thread, where it ends the program.
    try {
        return fetchAndParse(disc, tracks, error, unreachable);
    } catch (const std::exception& trouble) {
        qWarning() << "[AccurateRip] given up:" << trouble.what();
        tracks.clear();
        error = notReached();
        unreachable = true;
        return false;
    }
}

ArTrackVerdict accurateRipMatch(quint32 crcV1, quint32 crcV2, const QList<ArEntry>& entries)
{
    ArTrackVerdict verdict;
    verdict.crcV1 = crcV1;
    verdict.crcV2 = crcV2;
    for (const ArEntry& entry : entries) {
        if (!hasChecksum(entry))
            continue;
        verdict.inDatabase = true;
        if (entry.crc == crcV1 || entry.crc == crcV2) {
            verdict.matched = true;
            verdict.confidence = std::max<int>(verdict.confidence, entry.confidence);
        }
    }
    return verdict;
}

QList<QList<ArEntry>> parseDbar(const QByteArray& body, const AccurateRipIds& ids)
{
    QList<QList<ArEntry>> tracks(ids.audioTracks);
    // Sizes are counted in 32 bits with a sign.
    if (body.size() > std::numeric_limits<qint32>::max())
        return tracks;
    const char* at = body.constData();
    const char* const end = at + body.size();
    while (end - at >= chunkHeaderBytes) {
        const bool accepted = isOfDisc(at, ids);
        const int count = static_cast<quint8>(at[0]);
        at += chunkHeaderBytes;
        for (int place = 0; place < count; ++place, at += entryBytes) {
            if (end - at < entryBytes)
                return tracks;
            const ArEntry entry{static_cast<quint8>(at[0]), byteorder::readLittle<quint32>(at + 1),
                                byteorder::readLittle<quint32>(at + 5)};
            if (accepted && place < tracks.size() && (entry.crc != 0 || entry.crc450 != 0))
                tracks[place].append(entry);
        }
    }
    return tracks;
}
