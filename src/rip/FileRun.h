#pragma once

#include "rip/RipTypes.h"

#include <QList>

#include <optional>

struct AudioFormat;
class IAudioDecoder;
struct RipOrder;
class RunReport;
class TrackWriter;

/// The run over one audio file: decodes it and writes it as a track of its own
/// album, in its own rate and width. Made for one run.
class FileRun {
public:
    /// All three must outlive it.
    FileRun(const RipOrder& runOrder, TrackWriter& trackWriter, RunReport& runReport)
        : order(runOrder), writer(trackWriter), report(runReport)
    {
    }

    void run();

private:
    /// All samples of an opened decoder; nothing when memory does not hold them.
    std::optional<QList<int>> decodeAll(IAudioDecoder& decoder) const;
    /// The one track; false when there is no whole file of it.
    bool writeTrack(std::optional<QList<int>> samples, const AudioFormat& format);
    void fail(const char* japanese, const char* english);

    const RipOrder& order;
    TrackWriter& writer;
    RunReport& report;
};
