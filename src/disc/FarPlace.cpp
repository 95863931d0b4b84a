#include "disc/FarPlace.h"

#include "disc/DiscModel.h"

#include <algorithm>
#include <limits>

quint32 farPlace(const SectorRange& area, const QList<quint32>& from, quint32 enough)
{
    const quint32 sectors = area.count();
    const quint64 span = sectors - std::min<quint32>(sectors, READ_BATCH_SECTORS);
    quint32 chosen = area.first;
    quint32 chosenDistance = 0;
    for (quint64 i = 0; i <= FAR_PLACES; ++i) {
        const quint32 place = area.first + static_cast<quint32>(span * i / FAR_PLACES);
        quint32 distance = std::numeric_limits<quint32>::max();
        for (const quint32 one : from)
            distance = std::min(distance, place > one ? place - one : one - place);
        const bool better = chosenDistance < enough ? distance > chosenDistance
                                                    : distance >= enough && distance < chosenDistance;
        if (better) {
            chosen = place;
            chosenDistance = distance;
        }
    }
    return chosen;
}
