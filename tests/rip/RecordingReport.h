#pragma once

#include "rip/RipOrder.h"
#include "rip/RunReport.h"

#include <QList>
#include <QStringList>

#include <functional>

/// Keeps what a run says, each kind for itself and all but the sectors in one row
/// too.
class RecordingReport : public RunReport {
public:
    void sector(const SectorResult& record) override
    {
        sectors.append(record);
        if (onSector)
            onSector(record);
    }
    void trackBegins(int place, int totalTracks, const QString& title) override
    {
        started.append(QStringLiteral("%1/%2 %3").arg(place).arg(totalTracks).arg(title));
        said.append(QStringLiteral("begins ") + started.constLast());
    }
    void trackEnds(const RipResult& result) override
    {
        results.append(result);
        said.append(QStringLiteral("ends %1").arg(result.trackNumber));
    }
    void metadata(const RipOrder& filled) override
    {
        announced.append(filled);
        said.append(QStringLiteral("metadata ") + filled.album);
    }
    void failure(const QString& message) override
    {
        errors.append(message);
        said.append(QStringLiteral("failure ") + message);
    }
    void log(const QString& line) override
    {
        logLines.append(line);
        said.append(line);
        if (onLog)
            onLog(line);
    }
    void status(const QString& text) override
    {
        statusTexts.append(text);
        said.append(text);
        if (onStatus)
            onStatus(text);
    }
    bool stopRequested() const override { return stop || (stopWhen && stopWhen()); }

    QList<SectorResult> sectors;
    QStringList started;
    QList<RipResult> results;
    QList<RipOrder> announced;
    QStringList errors;
    QStringList logLines;
    QStringList statusTexts;
    QStringList said;

    bool stop = false; ///< what the run is told when it asks
    std::function<bool()> stopWhen;
    std::function<void(const SectorResult&)> onSector;
    std::function<void(const QString&)> onLog;
    std::function<void(const QString&)> onStatus;
};
