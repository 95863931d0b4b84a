#pragma once

#include "base/Handover.h"
#include "rip/RipOrder.h"
#include "rip/RunReport.h"

#include <QObject>
#include <QPixmap>
#include <QString>

#include <atomic>
#include <memory>

class CdDrive;
class TrackWriter;

/// Turns a source into files: one object, one run, on a thread of its own.
/// Everything it has to say goes out as signals; `finished` is the last of
/// every run. A failed track or sector never stops a run, and the user has no
/// cancel: only the end of the process asks a run to stop.
class RipWorker : public QObject, private RunReport {
    Q_OBJECT
public:
    explicit RipWorker(QObject* parent = nullptr);
    ~RipWorker() override;

    /// @param drive            not owned; may be null when sourceAudioFile is given
    /// @param sourceAudioFile  not empty selects the run over one audio file
    /// @param maxRereads       stored as 1 when lower
    void configure(CdDrive* drive, const DiscToc& disc, const QString& outputFolder, const QString& artist,
                   const QString& album, const QString& year, const QPixmap& cover,
                   const QString& discogsToken, int discNumber, int discTotal, int qualityValue,
                   OutputFormat outputFormat, const QString& sourceAudioFile, int maxRereads);
    void setNamingRule(const QString& rule);
    /// Says that the drive was borrowed for the run already, by whoever
    /// configured it. Without this the run borrows it, and ends with an error
    /// where another has it. Either way the run gives it back.
    void adoptBorrowedDrive() { heldDrive.reset(order.drive); }

    /// Output folder, slash and file name without extension, by the naming rule.
    QString outputBasePath(int trackNumber, const QString& title) const;
    /// Creates a folder that did not exist before, and returns its path.
    static QString uniqueFolder(const QString& parent, const QString& name);

    /// Shifts the samples of a finished disc track in place by the read offset of
    /// the drive, if there is one: applyReadOffset of rip/ReadOffset.h. Until a disc
    /// run begins, only data tracks bound what is borrowed.
    ///
    /// @param pcm       16-bit values shifted left by 16; its length never changes
    /// @param firstLba  first and last sector of the track
    void applyReadOffset(QList<int>& pcm, quint32 firstLba, quint32 lastLba);

    int maxRereads() const { return order.rereadLimit; }

    /// Makes the run end before its next sector or track; from any thread. A
    /// track in the encoder is still finished.
    void requestStop() { stopping = true; }
    /// The file that is being written at this moment, or nothing; from any thread.
    QString unfinishedFile() const;

public Q_SLOTS:
    void run();

Q_SIGNALS:
    void sectorDone(SectorResult sr);
    /// trackNum 0 carries a message of the run and no track.
    void trackStarted(int trackNum, int totalTracks, QString title);
    void trackDone(RipResult result);
    void metadataReady(QString artist, QString album, QString year, QPixmap coverArt,
                       QList<TrackInfo> tracks);
    void finished();
    void error(QString message);
    void logLine(QString line);
    void statusText(QString text);

private:
    void runDisc();
    /// Says why no track can be written, and reports each as failed.
    void failAllTracks();
    bool holdDrive();

    void sector(const SectorResult& record) override;
    void trackBegins(int place, int totalTracks, const QString& title) override;
    void trackEnds(const RipResult& result) override;
    void metadata(const RipOrder& filled) override;
    void failure(const QString& message) override;
    void log(const QString& line) override;
    void status(const QString& text) override;
    bool stopRequested() const override { return stopping; }

    struct GiveBack {
        void operator()(CdDrive* borrowed) const;
    };

    RipOrder order;
    const std::unique_ptr<TrackWriter> writer;
    std::unique_ptr<CdDrive, GiveBack> heldDrive; ///< the drive while it is borrowed for this run
    quint32 lastAudioLba = 0;                     ///< offset reads go no further; 0 until a disc run begins

    std::atomic<bool> stopping = false;
    Handover runOver; ///< for the worker's destruction on another thread
};
