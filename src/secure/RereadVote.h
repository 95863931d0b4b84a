#pragma once

#include <QByteArray>
#include <QList>

#include <functional>

/// One read of a sector; no data is a failure.
struct SectorRead {
    QByteArray data;
    quint32 c2Errors = 0; ///< bits the drive flagged; read in C2 mode alone
};

/// What a vote came to.
struct RereadOutcome {
    QByteArray data;        ///< the winner, or the best candidate; empty when nothing was read
    int reads = 0;          ///< spent, failed ones included
    bool confirmed = false; ///< the threshold was reached
};

/// Re-reads a doubtful sector of a disc until equal reads confirm it: two in C2
/// mode, where a read that the drive itself flags never counts, else three. When
/// the reads are used up, the most frequent unflagged read is the candidate, then
/// the most frequent of all; the lowest bytes win a tie.
///
/// @param read   one read from a cold position
/// @param seeds  reads that count already
/// @param limit  reads at most
RereadOutcome rereadVote(const std::function<SectorRead()>& read, const QList<QByteArray>& seeds, bool c2Mode,
                         int limit);
