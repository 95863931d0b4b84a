#pragma once

#include "disc/DiscModel.h"
#include "rip/RipTypes.h"

#include <QString>

struct RipOrder;

/// What a run may say and may be asked while it lasts; all of it on the run's
/// thread.
class RunReport {
public:
    virtual void sector(const SectorResult& record) = 0;
    /// @param place  from 1; 0 carries a message of the run and no track
    virtual void trackBegins(int place, int totalTracks, const QString& title) = 0;
    virtual void trackEnds(const RipResult& result) = 0;
    virtual void metadata(const RipOrder& filled) = 0;
    virtual void failure(const QString& message) = 0;
    virtual void log(const QString& line) = 0;
    virtual void status(const QString& text) = 0;

    /// Whether the run shall end before its next sector or track.
    virtual bool stopRequested() const = 0;

protected:
    ~RunReport() = default;
};
