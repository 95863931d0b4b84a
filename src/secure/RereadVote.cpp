#include "secure/RereadVote.h"

#include "secure/Votes.h"

namespace {

constexpr int c2Threshold = 2;
constexpr int compareThreshold = 3;

} // namespace

RereadOutcome rereadVote(const std::function<SectorRead()>& read, const QList<QByteArray>& seeds, bool c2Mode,
                         int limit)
{
    const int threshold = c2Mode ? c2Threshold : compareThreshold;
    Votes cleanVotes;
    for (const QByteArray& seed : seeds)
        ++cleanVotes[seed];
    Votes allVotes = cleanVotes;

    RereadOutcome outcome;
    while (outcome.reads < limit) {
        const SectorRead again = read();
        ++outcome.reads;
        if (again.data.isEmpty())
            continue;
        ++allVotes[again.data];
        if (c2Mode && again.c2Errors > 0)
            continue;
        if (++cleanVotes[again.data] >= threshold) {
            outcome.data = again.data;
            outcome.confirmed = true;
            return outcome;
        }
    }
    const Votes& candidates = cleanVotes.isEmpty() ? allVotes : cleanVotes;
    if (!candidates.isEmpty())
        outcome.data = mostVoted(candidates).key();
    return outcome;
}
