#include "codecs/ogg/OpusDecoder.h"

#include "codecs/AudioStream.h"
#include "codecs/BlockSize.h"
#include "codecs/CFile.h"
#include "codecs/ChannelOrder.h"
#include "codecs/Make.h"
#include "codecs/StreamChange.h"

#include <opusfile.h>

#include <algorithm>
#include <vector>

namespace {

constexpr quint32 opusRate = 48000;
constexpr int deliveredBits = 16;

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

/// The fewest channels of all links of a chained file.
int fewestChannels(OggOpusFile* file)
{
    int fewest = op_channel_count(file, -1);
    for (int link = 0; link < op_link_count(file); ++link)
        fewest = std::min(fewest, op_channel_count(file, link));
    return fewest;
}

AudioBlock widen(const std::vector<opus_int16>& interleaved, std::size_t frames, std::size_t channels)
{
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(frames * channels)), frames};
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const opus_int16* source = interleaved.data() + vorbisPlace(channel, channels);
        qint32* target = block.samples.data() + channel;
        for (std::size_t i = 0; i < frames; ++i)
            target[i * channels] = source[i * channels] * (1 << (32 - deliveredBits));
    }
    return block;
}

class OpusStream : public AudioStream {
public:
    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    CFile file;
    std::unique_ptr<OggOpusFile, OpusDeleter> handle;
    std::vector<opus_int16> buffer;
};

bool OpusStream::open(const std::filesystem::path& path)
{
    file = openForReading(path);
    if (!file)
        return false;
    // No close among the callbacks: the file stays ours.
    const OpusFileCallbacks callbacks{onRead, onSeek, onTell, nullptr};
    handle.reset(op_open_callbacks(file.get(), &callbacks, nullptr, 0, nullptr));
    const int channels = handle ? op_channel_count(handle.get(), -1) : 0;
    if (channels < 1)
        return false;
    pcm = {opusRate, static_cast<quint16>(channels), deliveredBits};
    // No more than a block even of the link that gets most frames out of it.
    buffer.resize(framesPerBlock(pcm.channels) * static_cast<std::size_t>(fewestChannels(handle.get())));
    const ogg_int64_t frames = op_pcm_total(handle.get(), -1);
    total = frames > 0 ? std::optional(static_cast<quint64>(frames)) : std::nullopt;
    return true;
}

std::optional<AudioBlock> OpusStream::read()
{
    int link = 0;
    const int frames = op_read(handle.get(), buffer.data(), static_cast<int>(buffer.size()), &link);
    if (frames <= 0)
        return std::nullopt;
    const auto channels = static_cast<quint16>(op_channel_count(handle.get(), link));
    AudioBlock block = widen(buffer, static_cast<std::size_t>(frames), channels);
    return channels == pcm.channels ? block : mapChannels(block, channels, pcm.channels, deliveredBits);
}

} // namespace

OpusDecoder_::OpusDecoder_() : StreamDecoder(make<AudioStream, OpusStream>) {}
