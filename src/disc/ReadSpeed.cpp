#include "disc/ReadSpeed.h"

#include "disc/DiscModel.h"

#include <algorithm>
#include <limits>

quint32 ReadSpeed::afterBatch(qint64 started, qint64 finished, quint32 sectors)
{
    if (!firstReadTime)
        firstReadTime = started;
    bytesRead += quint64{sectors} * RAW_SECTOR_BYTES;
    const double elapsed = static_cast<double>(finished - *firstReadTime) / 1e9;
    constexpr double fastest = std::numeric_limits<quint32>::max();
    if (elapsed <= 0)
        return 0;
    return static_cast<quint32>(std::min(fastest, static_cast<double>(bytesRead) / elapsed / 1024));
}
