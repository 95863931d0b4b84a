#include "codecs/ogg/OggDecoder.h"

#include "codecs/AudioStream.h"
#include "codecs/BlockSize.h"
#include "codecs/CFile.h"
#include "codecs/ChannelOrder.h"
#include "codecs/FloatSample.h"
#include "codecs/Make.h"
#include "codecs/StreamChange.h"

// The header defines callbacks that nobody here uses.
#define OV_EXCLUDE_STATIC_CALLBACKS
#include <vorbis/vorbisfile.h>

#include <cerrno>
#include <limits>

namespace {

constexpr int deliveredBits = 16;

/// A file, and how many more of its bytes may be asked for.
struct Source {
    CFile file;
    quint64 bytesLeft = 0;
};

std::size_t onRead(void* target, std::size_t size, std::size_t count, void* opaque)
{
    auto& source = *static_cast<Source*>(opaque);
    if (size * count > source.bytesLeft) {
        errno = EIO; // by which the library tells a failure from the end
        return 0;
    }
    source.bytesLeft -= size * count;
    return std::fread(target, size, count, source.file.get());
}

int onSeek(void* opaque, ogg_int64_t offset, int origin)
{
    return fseeko(static_cast<Source*>(opaque)->file.get(), offset, origin);
}

long onTell(void* opaque)
{
    return static_cast<long>(ftello(static_cast<Source*>(opaque)->file.get()));
}

/// The library's record of one file, which is empty until it is opened. No close
/// among the callbacks: the source stays with its owner.
class VorbisFile {
public:
    VorbisFile() = default;
    ~VorbisFile() { ov_clear(&record); }
    VorbisFile(const VorbisFile&) = delete;
    VorbisFile& operator=(const VorbisFile&) = delete;

    /// Looks for the ends of all streams of the file.
    bool open(Source& source)
    {
        // By itself the library passes over a first stream of a single page of audio.
        return ov_open_callbacks(&source, &record, nullptr, 0, {onRead, onSeek, nullptr, onTell}) == 0
               && ov_raw_seek(&record, 0) == 0;
    }
    /// Knows of what comes later only when it is there.
    bool openAtTheStart(Source& source)
    {
        ov_clear(&record);
        std::rewind(source.file.get());
        return ov_open_callbacks(&source, &record, nullptr, 0, {onRead, nullptr, nullptr, nullptr}) == 0;
    }
    OggVorbis_File* get() { return &record; }

private:
    OggVorbis_File record{};
};

/// The library looks for the last page in steps backward, each of which reads on to
/// the end again: without a limit, that goes on for hours where nothing is found.
quint64 bytesToOpenWith(const std::filesystem::path& path)
{
    constexpr quint64 enoughForManyStreams = 64 * 1024 * 1024;
    constexpr quint64 timesTheFile = 4;
    std::error_code failure;
    const auto size = std::filesystem::file_size(path, failure);
    return enoughForManyStreams + (failure ? 0 : timesTheFile * size);
}

qint32 sampleOf(float value)
{
    return valueFromFloat<deliveredBits>(value) * (1 << (32 - deliveredBits));
}

void interleave(float* const* planes, std::size_t frames, std::size_t channels, qint32* target)
{
    if (channels == 2) {
        // Both at once, so that the compiler does many at once.
        const float* left = planes[0];
        const float* right = planes[1];
        for (std::size_t i = 0; i < frames; ++i) {
            target[2 * i] = sampleOf(left[i]);
            target[2 * i + 1] = sampleOf(right[i]);
        }
        return;
    }
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const float* source = planes[vorbisPlace(channel, channels)];
        for (std::size_t i = 0; i < frames; ++i)
            target[i * channels + channel] = sampleOf(source[i]);
    }
}

class OggStream : public AudioStream {
public:
    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    bool openFile(const std::filesystem::path& path);
    quint64 decode(quint64 frames, qint32* target);

    Source source;
    VorbisFile vorbis;
    bool ended = false;
};

bool OggStream::openFile(const std::filesystem::path& path)
{
    source.file = openForReading(path);
    source.bytesLeft = bytesToOpenWith(path);
    if (!source.file)
        return false;
    const bool opened = vorbis.open(source);
    source.bytesLeft = std::numeric_limits<quint64>::max();
    return opened || vorbis.openAtTheStart(source);
}

bool OggStream::open(const std::filesystem::path& path)
{
    const vorbis_info* info = openFile(path) ? ov_info(vorbis.get(), 0) : nullptr;
    if (!info || info->rate <= 0 || info->channels <= 0)
        return false;
    pcm = {static_cast<quint32>(info->rate), static_cast<quint16>(info->channels), deliveredBits};
    const ogg_int64_t frames = ov_pcm_total(vorbis.get(), -1);
    total = frames > 0 ? std::optional(static_cast<quint64>(frames)) : std::nullopt;
    return true;
}

std::optional<AudioBlock> OggStream::read()
{
    const quint64 wanted = framesPerBlock(pcm.channels);
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(wanted * pcm.channels)), 0};
    while (!ended && block.frames < wanted)
        block.frames += decode(wanted - block.frames, block.samples.data() + block.frames * pcm.channels);
    block.samples.resize(static_cast<qsizetype>(block.frames * pcm.channels));
    return block.frames > 0 ? std::optional(std::move(block)) : std::nullopt;
}

/// Takes what the library has at once, which is nothing at a hole and at the end.
quint64 OggStream::decode(quint64 frames, qint32* target)
{
    float** planes = nullptr;
    int link = 0;
    const long decoded = ov_read_float(vorbis.get(), &planes, static_cast<int>(frames), &link);
    if (decoded == OV_HOLE)
        return 0;
    const vorbis_info* info = decoded > 0 ? ov_info(vorbis.get(), link) : nullptr;
    const bool sameRate = info && info->rate == static_cast<long>(pcm.sampleRate);
    if (info && !sameRate)
        reportRateChange(pcm.sampleRate, static_cast<quint32>(info->rate));
    ended = !sameRate;
    if (ended)
        return 0;
    const auto channels = static_cast<quint16>(info->channels);
    const auto count = static_cast<quint64>(decoded);
    if (channels == pcm.channels) {
        interleave(planes, count, channels, target);
    } else {
        AudioBlock other{QList<qint32>(static_cast<qsizetype>(count * channels)), count};
        interleave(planes, count, channels, other.samples.data());
        const AudioBlock mapped = mapChannels(other, channels, pcm.channels, deliveredBits);
        std::copy(mapped.samples.begin(), mapped.samples.end(), target);
    }
    return count;
}

} // namespace

OggDecoder::OggDecoder() : StreamDecoder(make<AudioStream, OggStream>) {}
