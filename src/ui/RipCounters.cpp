#include "ui/RipCounters.h"

#include "disc/DiscModel.h"

#include <QString>

void RipCounters::add(const SectorResult& sector)
{
    ++done;
    if (sector.bad || sector.mismatch)
        ++errors;
    else if (!sector.clean)
        ++suspects;
}

double RipCounters::readQuality() const
{
    double quality = 100.0;
    if (done > 0)
        quality = 100.0 - (static_cast<double>(errors) + suspects) * 100.0 / done;
    return quality > 0 ? quality : 0;
}

QString RipCounters::readQualityText() const
{
    return QString::number(readQuality(), 'f', 2);
}
