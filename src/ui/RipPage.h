#pragma once

#include "ui/RipCounters.h"
#include "ui/StatCards.h"

#include <QWidget>

#include <memory>

class DiscInHand;
class DrawThrottle;
class LogViewer;
class QLabel;
class QProgressBar;
class QPushButton;
class RipWorker;
class RunningRips;
class SectorMap;
struct ChosenSource;
struct RipRequest;
struct RipResult;
struct RipSettings;
struct SectorResult;

/// The step that rips: a map of the disc, the log and the numbers, which follow
/// the rips under way.
class RipPage : public QWidget {
    Q_OBJECT
public:
    /// All three outlive the page's last rip.
    RipPage(DiscInHand& disc, const RipSettings& settings, RunningRips& rips, QWidget* parent = nullptr);

    /// Makes sure of what a rip of the source reads. False, and said in the log,
    /// when there is no source or a rip has it.
    [[nodiscard]] bool claimSource(const ChosenSource& source);
    /// Rips the disc in hand, or converts the audio file, from a claimed source.
    void start(const RipRequest& request);
    /// Shows how a rip ended, and tells the user, who takes note before it returns.
    void showResult(bool ofAudioFile);

    void appendLog(const QString& line);
    void focusNextAct();
    /// As before the first rip.
    void reset();

Q_SIGNALS:
    void ripClicked();

private:
    QWidget* buildMapPane();
    QWidget* buildStatisticsPane();
    void followRips();
    void emptyDisplay(qint32 sectorsExpected);
    void writeHeader(const RipRequest& request);
    std::unique_ptr<RipWorker> workerFor(const RipRequest& request, const QString& artist,
                                         const QString& album, const QString& folder) const;
    void appendAll(const QStringList& lines);
    void countSectors(const QList<SectorResult>& sectors);
    void showTrackStart(int number, int total, const QString& title);
    void keepResult(const RipResult& result);
    void drawCounters();

    DiscInHand& disc;
    const RipSettings& settings;
    RunningRips& rips;

    SectorMap* sectorMap = nullptr;
    QProgressBar* ripProgress = nullptr;
    QLabel* progressLabel = nullptr;
    LogViewer* logViewer = nullptr;
    QPushButton* ripBtn = nullptr;
    StatCards cards;
    DrawThrottle* counterDrawing = nullptr;

    RipCounters counters;
    qint32 sectorsTotal = 0;
    quint32 lastSpeed = 0; ///< KiB/s, for the next drawing
};
