// The run over one audio file.

#include "base/Language.h"
#include "codecs/IAudioDecoder.h"
#include "rip/OutputNaming.h"
#include "rip/RipWorker.h"
#include "rip/TrackMemory.h"
#include "rip/TrackWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <new>

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

std::optional<QList<int>> RipWorker::decodeAll(IAudioDecoder& decoder) const
{
    try {
        const auto most = static_cast<qsizetype>(trackMemoryBytes() / sizeof(int));
        QList<int> samples;
        reserveHint(samples, decoder);
        while (!stopping) {
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

void RipWorker::runFileMode()
{
    const auto fail = [this](const char* japanese, const char* english) {
        Q_EMIT error(pickLang(japanese, english) + order.sourceAudioFile);
    };
    const std::filesystem::path path = QFile::encodeName(order.sourceAudioFile).toStdString();
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
    if (stopping)
        return;
    if (samples && samples->isEmpty())
        return fail("デコードできるデータがありませんでした: ", "No decodable audio data: ");

    const QFileInfo source(order.sourceAudioFile);
    const QString title = source.completeBaseName();
    Q_EMIT trackStarted(1, 1, title);
    RipResult result;
    result.trackNumber = 1;
    result.title = title;
    if (samples) {
        const QString folder = uniqueFolder(order.outputFolder, source.absoluteDir().dirName());
        writer->withinMemory([&] {
            result.ok = writer->write(std::move(*samples), format,
                                      {folder + QStringLiteral("/01. ") + withoutForbiddenCharacters(title),
                                       title, 1, 1, order.cover});
        });
    }
    result.errorSectors = result.ok ? 0 : noSamplesRead;
    Q_EMIT trackDone(result);
    if (!result.ok)
        fail("エンコードに失敗しました: ", "Encoding failed: ");
}
