#include "codecs/OpusDecoder.h"

#include "codecs/BlockSize.h"
#include "codecs/CFile.h"
#include "codecs/NoThrow.h"
#include "codecs/ShortSamples.h"

#include <opusfile.h>

#include <vector>

namespace {

constexpr quint32 opusRate = 48000;

struct OpusDeleter {
    void operator()(OggOpusFile* handle) const { op_free(handle); }
};

int onRead(void* source, unsigned char* target, int count)
{
    if (count <= 0)
        return 0;
    auto* file = static_cast<std::FILE*>(source);
    const std::size_t taken = std::fread(target, 1, static_cast<std::size_t>(count), file);
    return taken == 0 && std::ferror(file) ? OP_EREAD : static_cast<int>(taken);
}

int onSeek(void* source, opus_int64 offset, int origin)
{
    return fseeko(static_cast<std::FILE*>(source), offset, origin);
}

opus_int64 onTell(void* source)
{
    return ftello(static_cast<std::FILE*>(source));
}

} // namespace

struct OpusDecoder_::Stream {
    CFile file;
    std::unique_ptr<OggOpusFile, OpusDeleter> handle;
};

OpusDecoder_::OpusDecoder_() = default;
OpusDecoder_::~OpusDecoder_() = default;

bool OpusDecoder_::open(const std::filesystem::path& path)
{
    if (stream)
        return false;
    return withoutThrowing([&] {
        auto started = std::make_unique<Stream>();
        started->file = openForReading(path);
        if (!started->file)
            return false;
        // No close among the callbacks: the file stays ours.
        const OpusFileCallbacks callbacks{onRead, onSeek, onTell, nullptr};
        started->handle.reset(op_open_callbacks(started->file.get(), &callbacks, nullptr, 0, nullptr));
        const int channels = started->handle ? op_channel_count(started->handle.get(), -1) : 0;
        if (channels < 1)
            return false;
        pcm = {opusRate, static_cast<quint16>(channels), 16};
        const ogg_int64_t frames = op_pcm_total(started->handle.get(), -1);
        total = frames > 0 ? std::optional(static_cast<quint64>(frames)) : std::nullopt;
        stream = std::move(started);
        return true;
    });
}

std::optional<AudioBlock> OpusDecoder_::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> OpusDecoder_::readBlock()
{
    if (!stream || ended)
        return std::nullopt;
    std::vector<qint16> buffer(framesPerBlock(pcm.channels) * pcm.channels);
    const int frames = op_read(stream->handle.get(), buffer.data(), static_cast<int>(buffer.size()), nullptr);
    if (frames <= 0) {
        ended = true;
        return std::nullopt;
    }
    // A later link with fewer channels can report more frames than the buffer
    // holds at the first link's count.
    return widenShorts(buffer, static_cast<std::size_t>(frames), pcm.channels);
}

void OpusDecoder_::close()
{
    stream.reset();
    ended = false;
}
