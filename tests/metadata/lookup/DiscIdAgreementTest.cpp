#include "DiscTables.h"
#include "metadata/lookup/MusicBrainz.h"
#include "support/LogCapture.h"

#include <discid/discid.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

struct DiscIdCloser {
    void operator()(DiscId* handle) const { discid_free(handle); }
};

// The id that libdiscid makes of the same table; empty when it refuses it.
QString independentId(const DiscToc& disc)
{
    const std::unique_ptr<DiscId, DiscIdCloser> handle(discid_new());
    std::vector<int> offsets{static_cast<int>(disc.totalSectors) + LEAD_IN_SECTORS};
    for (const TrackInfo& track : disc.tracks)
        offsets.push_back(static_cast<int>(track.startLba) + LEAD_IN_SECTORS);
    if (discid_put(handle.get(), 1, static_cast<int>(disc.tracks.size()), offsets.data()) == 0)
        return QString();
    return QString::fromLatin1(discid_get_id(handle.get()));
}

} // namespace

TEST(MusicBrainzDiscIdAgreement, RandomTablesHaveTheSameIdEverywhere)
{
    const LogCapture quiet;
    constexpr int tables = 400;
    constexpr quint32 longestDisc = 80 * 60 * 75;
    std::mt19937 random(20'260'101);
    for (int table = 0; table < tables; ++table) {
        const int tracks = table < 99 ? table + 1 : std::uniform_int_distribution<int>(1, 99)(random);
        std::uniform_int_distribution<quint32> length(300, longestDisc / static_cast<quint32>(tracks + 1));
        QList<quint32> starts;
        quint32 sector = std::uniform_int_distribution<quint32>(0, 40)(random);
        for (int i = 0; i < tracks; ++i) {
            starts.append(sector);
            sector += length(random);
        }
        const DiscToc disc = discOf(starts, sector);
        const QString expected = independentId(disc);
        ASSERT_EQ(expected.size(), 28) << "table " << table;
        ASSERT_EQ(musicBrainzDiscId(disc), expected) << "table " << table;
    }
}
