#pragma once

#include <QtGlobal>

/// Sectors of a disc, the end not included.
struct SectorRange {
    quint32 first = 0;
    quint32 end = 0;

    bool isEmpty() const { return end <= first; }
    quint32 count() const { return end - first; }
};
