#pragma once

class QString;
struct SectorResult;

/// The counters of a rip, in sectors, and what follows from them.
struct RipCounters {
    int done = 0;
    int errors = 0;
    int suspects = 0;

    void add(const SectorResult& sector);
    /// Per cent, never below 0; 100 before the first sector. A sector saved by
    /// re-reading counts as much as a lost one.
    double readQuality() const;
    /// With two decimals, without the per cent sign.
    QString readQualityText() const;
};
