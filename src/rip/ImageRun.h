#pragma once

#include "rip/RipTypes.h"

#include <QPixmap>

class ParanoiaReader;
struct RipOrder;
class RunReport;
struct TrackInfo;
class TrackWriter;

/// The run over a CUE image, one file for each track. Made for one run.
class ImageRun {
public:
    /// All three must outlive it; the order has a drive and tracks.
    ImageRun(const RipOrder& runOrder, TrackWriter& trackWriter, RunReport& runReport)
        : order(runOrder), writer(trackWriter), report(runReport)
    {
    }

    void run();

private:
    /// The order's cover, or the one beside the image; puts it into the output
    /// folder.
    QPixmap placeCover();
    RipResult ripTrack(ParanoiaReader& reader, const TrackInfo& track, const QString& name);

    const RipOrder& order;
    TrackWriter& writer;
    RunReport& report;
    QPixmap cover; ///< goes into the tags
};
