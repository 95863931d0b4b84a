#pragma once

#include "ui/PageValues.h"

#include <QList>
#include <QWidget>

class QLabel;
class QProgressBar;
class QTableWidget;
struct DiscToc;
struct VerifyResult;

/// The step that compares the rip with the AccurateRip database and shows the
/// verdict of the disc and of each track.
class VerifyPage : public QWidget {
    Q_OBJECT
public:
    explicit VerifyPage(QWidget* parent = nullptr);

    /// Lists the tracks, with no verdict yet.
    void showTracks(const QList<TrackRow>& rows);
    /// Asks the database about a disc, for the checksums of the last rip.
    void start(const DiscToc& disc);

Q_SIGNALS:
    /// A line for the rip log.
    void logLine(const QString& line);

private:
    struct Verification;

    QWidget* buildVerdictBox();
    void finish(const Verification& started, const VerifyResult& result);
    void showVerdict(const Verification& started, const VerifyResult& result);
    void showNoVerdict(const Verification& started, const VerifyResult& result);

    QLabel* verifyResult = nullptr;
    QLabel* verifyDetail = nullptr;
    QProgressBar* verifyProgress = nullptr;
    QTableWidget* verifyTable = nullptr;
};
