#pragma once

#include "codecs/IAudioEncoder.h"
#include "metadata/tags/ReplayGain.h"

#include <QFileInfo>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

/// The encoder for the data of a format item; WAV for anything unknown.
EncoderId encoderIdOf(const QString& formatData);
/// The ending of the files that a format item makes, without a dot.
QString outputExtension(const QString& formatData);

/// Whether a file name ends in one of the extensions, in any case; they carry
/// their dots.
bool hasExtension(const QString& fileName, const QStringList& extensions);

/// The audio files that stand directly in a folder, by name as the locale
/// orders names. Links to files count; links to nothing, pipes, folders and
/// hidden files do not.
QFileInfoList audioFilesIn(const QString& folder);

struct ConversionCounts {
    int converted = 0;
    int failed = 0;
    int skipped = 0; ///< the container is the wanted one already
};

/// Converts the files of one folder into a new folder of its own, one after the
/// other on the calling thread. Nothing is written outside of that new folder.
class ConversionRun {
public:
    /// Is told what happens before each file; false ends the run there.
    using Progress = std::function<bool(const QString& text)>;

    /// @param sourceFolder  absolute; its name becomes that of the new folder
    ConversionRun(QString sourceFolder, QString outputFolder, const QString& formatData, Progress progress);

    /// The new folder is gone again when nothing was converted. Where it cannot
    /// be made, every file that is not skipped fails.
    ConversionCounts convert(const QFileInfoList& files);

private:
    bool convertOne(const QFileInfo& file, const QString& number, const QString& total);
    void enterFolder(const QString& folder);
    void finishReplayGain();

    QString sourceFolder;
    QString outputFolder;
    EncoderId encoder;
    QString extension;
    Progress progress;

    QString runFolder;
    bool hasFolder = false; ///< runFolder came into being for this run
    QString currentFolder;  ///< of the source file before; empty at the start
    QString targetFolder;   ///< what becomes of currentFolder
    ConversionCounts counts;
    QList<ReplayGainTrack> gainTracks; ///< of currentFolder
};
