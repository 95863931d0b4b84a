#pragma once

#include <QtGlobal>

/// How far the memory of this process has grown at its largest since this was
/// made: resident bytes, the sanitizers' own included.
class PeakMemory {
public:
    PeakMemory();

    /// Negative when the system does not tell.
    qint64 growth() const;

private:
    bool usable = false;
    qint64 start = 0;
};
