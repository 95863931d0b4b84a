#pragma once

#include "disc/DiscModel.h"

#include <QByteArray>
#include <QList>
#include <QtEndian>

/// Puts the values of one sector as they are where there is room for SECTOR_VALUES.
inline void putSampleValues(qint16* values, const QByteArray& sector)
{
    qFromLittleEndian<qint16>(sector.constData(), SECTOR_VALUES, values);
}

/// As above, each shifted left by 16 with its sign kept.
inline void putSampleValues(int* values, const QByteArray& sector)
{
    const char* bytes = sector.constData();
    for (int i = 0; i < SECTOR_VALUES; ++i, bytes += sizeof(qint16))
        values[i] = qFromLittleEndian<qint16>(bytes) * 65536;
}

/// Appends the values of one sector, each shifted left by 16.
inline void appendSampleValues(QList<int>& samples, const QByteArray& sector)
{
    const qsizetype place = samples.size();
    samples.resize(place + SECTOR_VALUES);
    putSampleValues(samples.data() + place, sector);
}
