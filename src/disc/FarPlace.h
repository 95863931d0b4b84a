#pragma once

#include "disc/SectorRange.h"

#include <QList>
#include <QtGlobal>

/// Buffers of CD drives do not reach this far: 8 MiB are 3567 sectors.
inline constexpr quint32 FAR_DISTANCE = 4000;

/// An area has one more than so many of them.
inline constexpr quint32 FAR_PLACES = 96;

/// Where to send a drive so that it forgets: the nearest place in an area that is
/// so many sectors away from all that it is to be far from or, in an area too
/// small for that, the one farthest from them.
///
/// @param area  not empty
/// @return      a sector from which READ_BATCH_SECTORS lie in the area, where so
///              many do
quint32 farPlace(const SectorRange& area, const QList<quint32>& from, quint32 enough = FAR_DISTANCE);
