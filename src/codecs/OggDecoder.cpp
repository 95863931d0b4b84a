#include "codecs/OggDecoder.h"

#include "codecs/BlockSize.h"
#include "codecs/NoThrow.h"
#include "codecs/OggPages.h"
#include "codecs/ShortSamples.h"
#include "codecs/VorbisHeaders.h"

#define STB_VORBIS_HEADER_ONLY
#include <stb_vorbis.h>

namespace {

constexpr std::size_t headerPackets = 3;

struct VorbisDeleter {
    void operator()(stb_vorbis* handle) const { stb_vorbis_close(handle); }
};

} // namespace

struct OggDecoder::Stream {
    CFile file;
    std::unique_ptr<stb_vorbis, VorbisDeleter> handle;
};

OggDecoder::OggDecoder() = default;
OggDecoder::~OggDecoder() = default;

bool OggDecoder::open(const std::filesystem::path& path)
{
    if (stream)
        return false;
    return withoutThrowing([&] { return openStream(path); });
}

bool OggDecoder::openStream(const std::filesystem::path& path)
{
    CFile file = openForReading(path);
    if (!file)
        return false;
    const OggPages pages = checkOggPages(file.get(), headerPackets);
    if (!vorbisHeadersAreSound(pages.headers))
        return false;
    auto started = std::make_unique<Stream>();
    started->file = undamagedPart(std::move(file), pages);
    if (!started->file)
        return false;
    // Not to be closed by the library, which would close it on failure as well.
    constexpr int closeOnFree = 0;
    started->handle.reset(stb_vorbis_open_file(started->file.get(), closeOnFree, nullptr, nullptr));
    if (!started->handle)
        return false;
    const stb_vorbis_info info = stb_vorbis_get_info(started->handle.get());
    if (info.sample_rate == 0 || info.channels <= 0)
        return false;
    pcm = {info.sample_rate, static_cast<quint16>(info.channels), 16};
    const unsigned int frames = stb_vorbis_stream_length_in_samples(started->handle.get());
    total = frames != 0 ? std::optional<quint64>(frames) : std::nullopt;
    stream = std::move(started);
    return true;
}

std::optional<AudioBlock> OggDecoder::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> OggDecoder::readBlock()
{
    if (!stream || ended)
        return std::nullopt;
    std::vector<qint16> buffer(framesPerBlock(pcm.channels) * pcm.channels);
    const int frames = stb_vorbis_get_samples_short_interleaved(
        stream->handle.get(), pcm.channels, buffer.data(), static_cast<int>(buffer.size()));
    if (frames <= 0) {
        ended = true;
        return std::nullopt;
    }
    return widenShorts(buffer, static_cast<std::size_t>(frames), pcm.channels);
}

void OggDecoder::close()
{
    stream.reset();
    ended = false;
}
