#include "convert/ConversionRun.h"

#include "base/FilePath.h"
#include "base/Language.h"
#include "base/UniqueFolder.h"
#include "codecs/EncoderOptions.h"
#include "codecs/IAudioDecoder.h"
#include "codecs/Transcoder.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

constexpr char mpeg4Extension[] = "m4a";

/// The container that an ending stands for.
QString containerOf(const QFileInfo& file)
{
    QString suffix = file.suffix().toLower();
    if (suffix == QLatin1String("aif"))
        return QStringLiteral("aiff");
    if (suffix == QLatin1String("aac"))
        return QLatin1String(mpeg4Extension);
    return suffix;
}

/// Takes the folder away with all that is in it; links are removed and never
/// followed. A link that somebody put in the folder's place is left alone.
void removeFolder(const QString& folder)
{
    std::error_code ignored;
    const std::filesystem::path path = toPath(folder);
    if (std::filesystem::symlink_status(path, ignored).type() == std::filesystem::file_type::directory)
        std::filesystem::remove_all(path, ignored);
}

} // namespace

EncoderId encoderIdOf(const QString& formatData)
{
    if (formatData == QLatin1String("FLAC"))
        return FlacEncoderId;
    return formatData == QLatin1String("MP3") ? Mp3EncoderId : WavEncoderId;
}

QString outputExtension(const QString& formatData)
{
    if (formatData == QLatin1String("FLAC"))
        return QStringLiteral("flac");
    if (formatData == QLatin1String("MP3"))
        return QStringLiteral("mp3");
    if (formatData == QLatin1String("AAC") || formatData == QLatin1String("ALAC"))
        return QLatin1String(mpeg4Extension);
    return QStringLiteral("wav");
}

bool hasExtension(const QString& fileName, const QStringList& extensions)
{
    return std::any_of(extensions.begin(), extensions.end(), [&fileName](const QString& extension) {
        return fileName.endsWith(extension, Qt::CaseInsensitive);
    });
}

QFileInfoList audioFilesIn(const QString& folder)
{
    const QStringList extensions = decoderExtensions();
    QFileInfoList files;
    std::error_code error;
    // Qt's own iterator passes over names that are not of the locale's code, and
    // the user would never learn of them. Here they are found, and fail.
    for (std::filesystem::directory_iterator entry(toPath(folder), error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        const QFileInfo file(entry->path());
        if (!file.isHidden() && hasExtension(file.fileName(), extensions)
            && entry->is_regular_file(unreadable))
            files.append(file);
    }
    std::stable_sort(files.begin(), files.end(), [](const QFileInfo& left, const QFileInfo& right) {
        const QString leftFolder = left.absolutePath();
        const QString rightFolder = right.absolutePath();
        if (leftFolder != rightFolder)
            return QString::localeAwareCompare(leftFolder, rightFolder) < 0;
        return QString::localeAwareCompare(left.fileName(), right.fileName()) < 0;
    });
    return files;
}

ConversionRun::ConversionRun(QString source, QString output, const QString& formatData, Progress onProgress)
    : sourceFolder(std::move(source)), outputFolder(std::move(output)), encoder(encoderIdOf(formatData)),
      extension(outputExtension(formatData)), progress(std::move(onProgress))
{
}

ConversionCounts ConversionRun::convert(const QFileInfoList& files)
{
    const MadeFolder made = makeUniqueFolder(outputFolder, QDir(sourceFolder).dirName());
    runFolder = made.path;
    hasFolder = made.created;
    qsizetype number = 0;
    for (const QFileInfo& file : files) {
        if (!convertOne(file, QString::number(++number), QString::number(files.size())))
            break;
    }
    finishReplayGain();
    if (counts.converted == 0 && hasFolder)
        removeFolder(runFolder);
    return counts;
}

void ConversionRun::enterFolder(const QString& folder)
{
    if (folder == currentFolder)
        return;
    finishReplayGain();
    currentFolder = folder;
    const QString below = QDir(sourceFolder).relativeFilePath(folder);
    const bool isSource = below.isEmpty() || below == QLatin1String(".");
    targetFolder = isSource ? runFolder : runFolder + u'/' + below;
}

// False when the run is to end here.
bool ConversionRun::convertOne(const QFileInfo& file, const QString& number, const QString& total)
{
    enterFolder(file.absolutePath());
    if (containerOf(file) == extension && extension != QLatin1String(mpeg4Extension)) {
        const bool goOn = progress(pickLang("処理不可 (%1/%2): %3 — 変換元と出力先が同じ形式です",
                                            "Skipped (%1/%2): %3 — source and output are the same format")
                                       .arg(number, total, file.fileName()));
        ++counts.skipped;
        return goOn;
    }
    if (!progress(
            pickLang("変換中 (%1/%2): %3", "Converting (%1/%2): %3").arg(number, total, file.fileName())))
        return false;
    // By now somebody else may have made a folder of that name; it is not ours to write into.
    if (!hasFolder) {
        ++counts.failed;
        return true;
    }

    QDir().mkpath(targetFolder);
    const QString target = targetFolder + u'/' + file.completeBaseName() + u'.' + extension;
    TrackGain gain;
    gain.enabled = encoderOptions.replayGainEnabled;
    if (!convertFile(toPath(file.absoluteFilePath()), toPath(target), encoder, 1, &gain)) {
        QFile::remove(target);
        ++counts.failed;
        return true;
    }
    ++counts.converted;
    if (gain.enabled)
        gainTracks.append({target, gain.gain, gain.peak, gain.blocks});
    return true;
}

void ConversionRun::finishReplayGain()
{
    if (encoderOptions.replayGainEnabled && !gainTracks.isEmpty())
        writeAlbumReplayGain(gainTracks);
    gainTracks.clear();
}
