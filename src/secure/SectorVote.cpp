#include "secure/SectorVote.h"

#include "secure/Votes.h"

#include <algorithm>

namespace {

constexpr int trustedVotes = 3;  // ends the voting early
constexpr int acceptedVotes = 2; // enough once the attempts are used up

} // namespace

QByteArray silentSector()
{
    return QByteArray(RAW_SECTOR_BYTES, '\0');
}

QByteArray voteOnSector(const std::function<QByteArray(quint32)>& read, quint32 lba, int maxReads,
                        const bool& abort, SectorResult& record)
{
    record = SectorResult();
    record.lba = lba;
    QByteArray first = read(lba);
    if (first.isEmpty()) {
        record.bad = true;
        return silentSector();
    }
    Votes votes{{first, 1}};
    const QByteArray second = read(lba);
    if (second == first) {
        record.clean = true;
        return first;
    }
    if (!second.isEmpty())
        ++votes[second];
    ++record.retries;

    for (int attempt = 2; attempt < maxReads && !abort; ++attempt) {
        read(lba > 0 ? lba - 1 : lba + 1);
        const QByteArray again = read(lba);
        ++record.retries;
        if (again.isEmpty())
            continue;
        ++votes[again];
        const auto trusted =
            std::find_if(votes.cbegin(), votes.cend(), [](int n) { return n >= trustedVotes; });
        if (trusted != votes.cend())
            return trusted.key();
    }
    const auto best = mostVoted(votes);
    record.bad = best.value() < acceptedVotes;
    return best.key();
}
