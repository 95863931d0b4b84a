#pragma once

#include "disc/DiscModel.h"
#include "disc/SectorRange.h"

/// Where a disc may be read, as its table of contents tells; without one there is no
/// bound.
class DiscBounds {
public:
    DiscBounds() = default;
    explicit DiscBounds(const DiscToc& disc);

    /// How many sectors of so many one command may ask for. A drive refuses a batch
    /// that reaches from audio into data or into the gap behind a session, and the
    /// sound sectors in it would be lost as well.
    quint32 boundedBatch(quint32 lba, quint32 count) const;

    /// From the first audio sector to the last; empty where the table makes no sense.
    const SectorRange& audioArea() const { return area; }

private:
    quint32 leadOut = 0; ///< 0: none is known
    QList<quint32> audioEnds;
    SectorRange area;
};
