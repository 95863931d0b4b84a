#pragma once

#include <QtGlobal>

/// What this process holds of the machine at a moment.
struct ProcessLevel {
    qint64 heapBytes = 0;     ///< allocated and not freed; 0 under the sanitizers, who do not tell
    qint64 residentBytes = 0; ///< with nothing that is free kept back
    qsizetype handles = 0;
    qsizetype threads = 0;
};

ProcessLevel processLevel();
