#pragma once

#include "verify/AccurateRip.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <utility>

/// One submission record of one track of one pressing.
struct ArEntry {
    quint8 confidence = 0; ///< submissions that agree
    quint32 crc = 0;       ///< of either version
    quint32 crc450 = 0;    ///< second checksum; keeps an entry, and is compared with nothing

    bool operator==(const ArEntry&) const = default;
};

/// What the fetch of a disc's database file came to.
struct VerifyResult {
    bool ok = false;              ///< some entry has a checksum
    bool networkError = false;    ///< no answer, or none of use; not set for a disc that is not there
    QString error;                ///< for the user, in the language in force; empty when ok
    QList<QList<ArEntry>> tracks; ///< one list for each audio track in disc order, entries in file order
};

/// How one track compares with its entries.
struct ArTrackVerdict {
    bool inDatabase = false; ///< some entry has a checksum
    bool matched = false;    ///< by either version
    int confidence = 0;      ///< the largest among the entries that match
    quint32 crcV1 = 0;
    quint32 crcV2 = 0;
};

/// Checksums and frame windows of the saved tracks of the last rip, by track
/// number. On the GUI thread alone.
extern QHash<int, std::pair<quint32, quint32>> ripCrcs;
extern QHash<int, QList<quint32>> ripFrameWindows;

/// Fetches the disc's database file and walks it; blocks for as long as the
/// network does. The results are the fields of VerifyResult. Throws nothing: want
/// of memory is a server that was not reached.
bool accurateRipVerify(const DiscToc& disc, QList<QList<ArEntry>>& tracks, QString& error,
                       bool* networkError = nullptr);

ArTrackVerdict accurateRipMatch(quint32 crcV1, quint32 crcV2, const QList<ArEntry>& entries);

/// Walks a database file: one list for each audio track, of the chunks that are
/// the disc's. What a damaged file held up to its damage stands.
QList<QList<ArEntry>> parseDbar(const QByteArray& body, const AccurateRipIds& ids);
