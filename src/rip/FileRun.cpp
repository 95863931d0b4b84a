#include "rip/FileRun.h"

#include "base/FilePath.h"
#include "base/Language.h"
#include "base/UniqueFolder.h"
#include "codecs/IAudioDecoder.h"
#include "rip/OutputNaming.h"
#include "rip/RipOrder.h"
#include "rip/RunReport.h"
#include "rip/TrackMemory.h"
#include "rip/TrackWriter.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <new>
#include <utility>

namespace {

// A header may promise any length, so only a sensible one is made room for.
void reserveHint(QList<int>& samples, const IAudioDecoder& decoder)
{
    constexpr quint64 sensibleValues = quint64{1} << 28;
    const quint64 frames = decoder.totalFrames().value_or(0);
    if (frames <= sensibleValues)
        samples.reserve(static_cast<qsizetype>(std::min(frames * decoder.format().channels, sensibleValues)));
}

} // namespace

std::optional<QList<int>> FileRun::decodeAll(IAudioDecoder& decoder) const
{
    try {
        const auto most = static_cast<qsizetype>(trackMemoryBytes() / sizeof(int));
        QList<int> samples;
        reserveHint(samples, decoder);
        while (!report.stopRequested()) {
            const auto block = decoder.read();
            if (!block)
                break;
            samples.append(block->samples);
            if (samples.size() > most)
                return std::nullopt;
        }
        return samples;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

void FileRun::run()
{
    const std::filesystem::path path = toPath(order.sourceAudioFile);
    const auto decoder = makeDecoder(path);
    if (!decoder)
        return fail("対応していないファイル形式です: ", "Unsupported file format: ");
    if (!decoder->open(path)) {
        return fail("ファイルを開けません（壊れている、または非対応のコーデックです）: ",
                    "Cannot open the file (corrupted or unsupported codec): ");
    }
    const AudioFormat format = decoder->format();
    std::optional<QList<int>> samples = decodeAll(*decoder);
    decoder->close();
    if (report.stopRequested())
        return;
    if (samples && samples->isEmpty())
        return fail("デコードできるデータがありませんでした: ", "No decodable audio data: ");
    if (!writeTrack(std::move(samples), format))
        fail("エンコードに失敗しました: ", "Encoding failed: ");
}

bool FileRun::writeTrack(std::optional<QList<int>> samples, const AudioFormat& format)
{
    const QFileInfo source(order.sourceAudioFile);
    RipResult result;
    result.trackNumber = 1;
    result.title = source.completeBaseName();
    report.trackBegins(1, 1, result.title);
    if (samples) {
        const QString folder = makeUniqueFolder(order.outputFolder, source.absoluteDir().dirName()).path;
        writer.withinMemory([&] {
            const QString basePath =
                folder + QStringLiteral("/01. ") + withoutForbiddenCharacters(result.title);
            result.ok =
                writer.write(std::move(*samples), format, {basePath, result.title, 1, 1, order.cover});
        });
    }
    result.errorSectors = result.ok ? 0 : noSamplesRead;
    report.trackEnds(result);
    return result.ok;
}

void FileRun::fail(const char* japanese, const char* english)
{
    report.failure(pickLang(japanese, english) + order.sourceAudioFile);
}
