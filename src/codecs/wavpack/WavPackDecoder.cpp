#include "codecs/wavpack/WavPackDecoder.h"

#include "codecs/BlockSize.h"
#include "codecs/CFile.h"
#include "codecs/NoThrow.h"

#include <wavpack/wavpack.h>

#include <limits>

namespace {

constexpr std::size_t errorTextBytes = 128;
constexpr int sampleBits = 32;

struct ContextDeleter {
    void operator()(WavpackContext* context) const { WavpackCloseFile(context); }
};

std::FILE* fileOf(void* id)
{
    return static_cast<std::FILE*>(id);
}

int32_t onRead(void* id, void* target, int32_t count)
{
    return count > 0
               ? static_cast<int32_t>(std::fread(target, 1, static_cast<std::size_t>(count), fileOf(id)))
               : 0;
}

int64_t onTell(void* id)
{
    return ftello(fileOf(id));
}

int onSeek(void* id, int64_t place)
{
    return fseeko(fileOf(id), place, SEEK_SET);
}

int onSeekFrom(void* id, int64_t delta, int origin)
{
    return fseeko(fileOf(id), delta, origin);
}

int onPushBack(void* id, int byte)
{
    return std::ungetc(byte, fileOf(id));
}

int64_t onLength(void* id)
{
    const off_t place = ftello(fileOf(id));
    if (place < 0 || fseeko(fileOf(id), 0, SEEK_END) != 0)
        return 0;
    const off_t length = ftello(fileOf(id));
    fseeko(fileOf(id), place, SEEK_SET);
    return length;
}

int onCanSeek(void*)
{
    return 1;
}

int onTruncate(void*)
{
    return 0;
}

// The library closes on some failures and not on others; the file stays ours.
int onClose(void*)
{
    return 0;
}

} // namespace

struct WavPackDecoder::Stream {
    CFile file;
    WavpackStreamReader64 reader{onRead,     nullptr,  onTell,    onSeek,     onSeekFrom,
                                 onPushBack, onLength, onCanSeek, onTruncate, onClose};
    std::unique_ptr<WavpackContext, ContextDeleter> context;
};

WavPackDecoder::WavPackDecoder() = default;
WavPackDecoder::~WavPackDecoder() = default;

bool WavPackDecoder::open(const std::filesystem::path& path)
{
    if (stream)
        return false;
    return withoutThrowing([&] { return openStream(path); });
}

bool WavPackDecoder::openStream(const std::filesystem::path& path)
{
    auto started = std::make_unique<Stream>();
    started->file = openForReading(path);
    if (!started->file)
        return false;
    char error[errorTextBytes];
    started->context.reset(
        WavpackOpenFileInputEx64(&started->reader, started->file.get(), nullptr, error, 0, 0));
    if (!started->context)
        return false;
    const int channels = WavpackGetNumChannels(started->context.get());
    const int bits = WavpackGetBitsPerSample(started->context.get());
    const quint32 rate = WavpackGetSampleRate(started->context.get());
    if (channels < 1 || channels > std::numeric_limits<quint16>::max() || bits < 1 || bits > sampleBits
        || rate == 0)
        return false;
    pcm = {rate, static_cast<quint16>(channels), static_cast<quint16>(bits)};
    const int64_t frames = WavpackGetNumSamples64(started->context.get());
    total = frames > 0 ? std::optional(static_cast<quint64>(frames)) : std::nullopt;
    stream = std::move(started);
    return true;
}

std::optional<AudioBlock> WavPackDecoder::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> WavPackDecoder::readBlock()
{
    if (!stream || ended)
        return std::nullopt;
    const quint64 wanted = framesPerBlock(pcm.channels);
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(wanted * pcm.channels)), 0};
    block.frames =
        WavpackUnpackSamples(stream->context.get(), block.samples.data(), static_cast<quint32>(wanted));
    if (block.frames == 0) {
        ended = true;
        return std::nullopt;
    }
    block.samples.resize(static_cast<qsizetype>(block.frames * pcm.channels));
    const int shift = sampleBits - pcm.bitsPerSample;
    for (qint32& sample : block.samples)
        sample = static_cast<qint32>(static_cast<quint32>(sample) << shift);
    return block;
}

void WavPackDecoder::close()
{
    stream.reset();
    ended = false;
}
