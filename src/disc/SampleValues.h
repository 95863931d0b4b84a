#pragma once

#include "disc/DiscModel.h"

#include <QByteArray>
#include <QList>
#include <QtEndian>

#include <algorithm>

/// Appends the values of one sector as they are.
inline void appendSampleValues(QList<qint16>& samples, const QByteArray& sector)
{
    const qsizetype place = samples.size();
    samples.resize(place + SECTOR_VALUES);
    qFromLittleEndian<qint16>(sector.constData(), SECTOR_VALUES, samples.data() + place);
}

/// Appends the values of one sector, each shifted left by 16 with its sign kept.
inline void appendSampleValues(QList<int>& samples, const QByteArray& sector)
{
    qint16 values[SECTOR_VALUES];
    qFromLittleEndian<qint16>(sector.constData(), SECTOR_VALUES, values);
    const qsizetype place = samples.size();
    samples.resize(place + SECTOR_VALUES);
    std::transform(std::begin(values), std::end(values), samples.begin() + place,
                   [](qint16 value) { return int{value} * 65536; });
}
