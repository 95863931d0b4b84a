#include "rip/SectorJudge.h"

#include "disc/CdDrive.h"
#include "rip/RunReport.h"
#include "secure/RereadVote.h"

#include <QDebug>

namespace {

constexpr quint32 crossCheckInterval = 2000; // sectors

} // namespace

void SectorJudge::judge(SectorResult& record, const QByteArray& first, QByteArray& data) const
{
    if (isTrusted(record, first, data)) {
        const bool looked = mode.c2 && (record.lba - mode.firstAudioLba) % crossCheckInterval == 0;
        record.mismatch = looked && !passesCrossCheck(record.lba, data);
        record.clean = !record.mismatch;
        return;
    }
    QList<QByteArray> seeds;
    if (!mode.c2) {
        for (const QByteArray& read : {data, first}) {
            if (!read.isEmpty())
                seeds.append(read);
        }
    }
    reread(record, seeds, data);
}

bool SectorJudge::isTrusted(const SectorResult& record, const QByteArray& first, const QByteArray& data) const
{
    return !data.isEmpty() && (mode.c2 ? record.c2Errors == 0 : first == data);
}

bool SectorJudge::passesCrossCheck(quint32 lba, QByteArray& data) const
{
    const QByteArray copy = drive.readSectorFresh(lba);
    if (copy.isEmpty() || copy == data)
        return true;
    const QByteArray third = drive.readSectorFresh(lba);
    if (third == copy)
        data = copy;
    qWarning() << "[RipWorker] Cross-check mismatch at LBA" << lba;
    return false;
}

void SectorJudge::reread(SectorResult& record, const QList<QByteArray>& seeds, QByteArray& data) const
{
    const auto read = [this, &record]() -> SectorRead {
        if (report.stopRequested())
            return {};
        const QByteArray again = drive.readSectorFresh(record.lba);
        return {again, drive.lastC2Errors()};
    };
    const RereadOutcome outcome = rereadVote(read, seeds, mode.c2, mode.rereadLimit);
    if (!outcome.data.isEmpty())
        data = outcome.data;
    record.retries = outcome.reads;
    record.bad = !outcome.confirmed;
}
