#pragma once

#include <QtGlobal>

#include <optional>

/// The average speed since the first batch that came in.
class ReadSpeed {
public:
    /// A batch of so many sectors has come; times in nanoseconds.
    /// @return  KiB/s; 0 where no time has passed
    quint32 afterBatch(qint64 started, qint64 finished, quint32 sectors);

private:
    quint64 bytesRead = 0;
    std::optional<qint64> firstReadTime;
};
