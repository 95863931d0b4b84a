#pragma once

#include "codecs/AudioFormat.h"
#include "metadata/tags/ReplayGain.h"

#include <QList>
#include <QPixmap>
#include <QString>

#include <functional>
#include <mutex>

struct RipOrder;
class RunReport;

/// What is written of a track beside its samples.
struct TrackLabel {
    QString basePath; ///< without extension
    QString title;
    int number = 0;
    int total = 0;
    QPixmap cover;
};

/// What the gain tags of a run's files speak of: each of its own track, and of
/// the album that they make up together, or not.
enum class GainOf { album, eachFile };

/// Writes the tracks of a run, one after the other, in the order's format and
/// with its tags. All but unfinishedFile belongs to the run's thread.
class TrackWriter {
public:
    /// Both must outlive it.
    TrackWriter(const RipOrder& runOrder, RunReport& runReport) : order(runOrder), report(runReport) {}

    /// Does the work of one track. False when memory did not hold it; then
    /// nothing is left of its file.
    bool withinMemory(const std::function<void()>& work);

    /// The memory of the last track's samples, with some values still in it:
    /// touching fresh memory costs as much as encoding it.
    QList<int> takeSpareSamples();
    /// Encodes and tags one track; false when its file is not whole.
    /// @param pcm  left-justified 32-bit values; taken over, and found in
    ///             writtenSamples afterwards
    bool write(QList<int>&& pcm, const AudioFormat& format, const TrackLabel& label);
    /// The samples of the last track, until they are taken.
    const QList<int>& writtenSamples() const { return samples; }

    /// The order's cover as "cover.jpg" in the output folder.
    void saveCover() const;

    /// Ends the run: lets the memory go and, unless the run was stopped, writes the
    /// gain tags of its files.
    void finish(GainOf scope);

    /// The file that is being written at this moment, or nothing; from any thread.
    QString unfinishedFile() const;

private:
    bool encode(const AudioBlock& block, const AudioFormat& format, const QString& path);
    void measureGain(const AudioBlock& block, const AudioFormat& format, const QString& path);
    void tag(const QString& path, const TrackLabel& label);
    void setUnfinishedFile(const QString& path);

    const RipOrder& order;
    RunReport& report;
    QList<int> samples;
    QList<ReplayGainTrack> gainEntries; ///< stays empty while no gain is asked for
    mutable std::mutex fileLock;
    QString fileInWork;
};
