#pragma once

#include "codecs/AudioFormat.h"
#include "disc/DiscModel.h"
#include "rip/RipTypes.h"

#include <QObject>
#include <QPixmap>
#include <QString>

#include <atomic>
#include <mutex>

class CdDrive;
class ParanoiaReader;

/// Turns a source into files: one object, one run, on a thread of its own.
/// Everything it has to say goes out as signals; `finished` is the last of
/// every run. A failed track or sector never stops a run, and the user has no
/// cancel: only the end of the process asks a run to stop.
class RipWorker : public QObject {
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

    /// Output folder, slash and file name without extension, by the naming rule.
    QString outputBasePath(int trackNumber, const QString& title) const;
    /// Creates a folder that did not exist before, and returns its path.
    static QString uniqueFolder(const QString& parent, const QString& name);

    int maxRereads() const { return rereadLimit; }

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
    void runCueMode();
    void runFileMode();
    QPixmap imageCover();
    RipResult ripImageTrack(ParanoiaReader& reader, const TrackInfo& track, const QString& name,
                            const QPixmap& trackCover);
    /// Encodes and tags one track; false when its file is not whole.
    /// @param pcm  taken over; 16-bit values shifted left by 16
    bool encodeTrack(QList<int>&& pcm, const AudioFormat& format, const QString& basePath,
                     const QString& title, int trackNumber, int totalTracks, const QPixmap& trackCover);
    void tagTrack(const QString& path, const QString& title, int trackNumber, int totalTracks,
                  const QPixmap& trackCover) const;
    bool writeAudio(const AudioBlock& block, const AudioFormat& format, const QString& path);
    void setUnfinishedFile(const QString& path);

    CdDrive* drive = nullptr;
    DiscToc disc;
    QString outputFolder;
    QString namingRule;
    QString artist;
    QString album;
    QString year;
    QPixmap cover;
    QString discogsToken;
    int discNumber = 0;
    int discTotal = 0;
    int qualityValue = 300;
    OutputFormat outputFormat = OutputFlac;
    QString sourceAudioFile;
    int rereadLimit = 20;
    /// The samples of the track before, for their memory: touching fresh memory
    /// costs as much as encoding it.
    QList<int> spareSamples;

    std::atomic<bool> stopping = false;
    mutable std::mutex fileLock;
    QString fileInWork;
};
