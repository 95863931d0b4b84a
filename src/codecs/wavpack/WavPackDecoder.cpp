#include "codecs/wavpack/WavPackDecoder.h"

#include "codecs/AudioStream.h"
#include "codecs/BlockSize.h"
#include "codecs/CFile.h"
#include "codecs/Make.h"

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

class WavPackStream : public AudioStream {
public:
    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    CFile file;
    WavpackStreamReader64 reader{onRead,     nullptr,  onTell,    onSeek,     onSeekFrom,
                                 onPushBack, onLength, onCanSeek, onTruncate, onClose};
    std::unique_ptr<WavpackContext, ContextDeleter> context;
};

bool WavPackStream::open(const std::filesystem::path& path)
{
    file = openForReading(path);
    if (!file)
        return false;
    char error[errorTextBytes];
    context.reset(WavpackOpenFileInputEx64(&reader, file.get(), nullptr, error, 0, 0));
    if (!context)
        return false;
    const int channels = WavpackGetNumChannels(context.get());
    const int bits = WavpackGetBitsPerSample(context.get());
    const quint32 rate = WavpackGetSampleRate(context.get());
    if (channels < 1 || channels > std::numeric_limits<quint16>::max() || bits < 1 || bits > sampleBits
        || rate == 0)
        return false;
    pcm = {rate, static_cast<quint16>(channels), static_cast<quint16>(bits)};
    const int64_t frames = WavpackGetNumSamples64(context.get());
    total = frames > 0 ? std::optional(static_cast<quint64>(frames)) : std::nullopt;
    return true;
}

std::optional<AudioBlock> WavPackStream::read()
{
    const quint64 wanted = framesPerBlock(pcm.channels);
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(wanted * pcm.channels)), 0};
    block.frames = WavpackUnpackSamples(context.get(), block.samples.data(), static_cast<quint32>(wanted));
    if (block.frames == 0)
        return std::nullopt;
    block.samples.resize(static_cast<qsizetype>(block.frames * pcm.channels));
    const int shift = sampleBits - pcm.bitsPerSample;
    for (qint32& sample : block.samples)
        sample = static_cast<qint32>(static_cast<quint32>(sample) << shift);
    return block;
}

} // namespace

WavPackDecoder::WavPackDecoder() : StreamDecoder(make<AudioStream, WavPackStream>) {}
