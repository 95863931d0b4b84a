#include "codecs/flac/FlacDecoder.h"

#include "codecs/AudioStream.h"
#include "codecs/BlockSize.h"
#include "codecs/CFile.h"
#include "codecs/Make.h"
#include "codecs/NoThrow.h"

#include <FLAC/stream_decoder.h>

#include <algorithm>
#include <vector>

namespace {

struct DecoderDeleter {
    void operator()(FLAC__StreamDecoder* handle) const { FLAC__stream_decoder_delete(handle); }
};

/// The library's decoder, which pushes frames of its own size, and the queue
/// from which blocks are pulled.
class FlacStream : public AudioStream {
public:
    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    static FLAC__StreamDecoderWriteStatus onFrame(const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                                  const FLAC__int32* const channels[], void* self);
    static void onMetadata(const FLAC__StreamDecoder*, const FLAC__StreamMetadata* metadata, void* self);
    static void onError(const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void*) {}

    bool queue(const FLAC__Frame& frame, const FLAC__int32* const channels[]);
    std::size_t queuedFrames() const { return (queued.size() - taken) / pcm.channels; }

    bool headerSeen = false;
    bool ended = false;
    std::vector<qint32> queued; // interleaved
    std::size_t taken = 0;      // values at the front of the queue that are handed out
    std::unique_ptr<FLAC__StreamDecoder, DecoderDeleter> decoder;
};

bool FlacStream::open(const std::filesystem::path& path)
{
    CFile file = openForReading(path);
    if (!file)
        return false;
    decoder.reset(FLAC__stream_decoder_new());
    if (!decoder)
        return false;
    FLAC__stream_decoder_set_metadata_respond(decoder.get(), FLAC__METADATA_TYPE_STREAMINFO);
    // From here on the file is the decoder's, which closes it when deleted even
    // if this call fails.
    if (FLAC__stream_decoder_init_FILE(decoder.get(), file.release(), onFrame, onMetadata, onError, this)
        != FLAC__STREAM_DECODER_INIT_STATUS_OK)
        return false;
    // The library finds the end of the metadata also where it finds none.
    return FLAC__stream_decoder_process_until_end_of_metadata(decoder.get()) && headerSeen;
}

void FlacStream::onMetadata(const FLAC__StreamDecoder*, const FLAC__StreamMetadata* metadata, void* self)
{
    auto& stream = *static_cast<FlacStream*>(self);
    if (metadata->type != FLAC__METADATA_TYPE_STREAMINFO)
        return;
    const FLAC__StreamMetadata_StreamInfo& info = metadata->data.stream_info;
    stream.pcm = {info.sample_rate, static_cast<quint16>(info.channels),
                  static_cast<quint16>(info.bits_per_sample)};
    stream.total = info.total_samples;
    stream.headerSeen = info.channels > 0;
}

FLAC__StreamDecoderWriteStatus FlacStream::onFrame(const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                                   const FLAC__int32* const channels[], void* self)
{
    auto& stream = *static_cast<FlacStream*>(self);
    // Nothing may be thrown through the library.
    if (withoutThrowing([&] { return stream.queue(*frame, channels); }))
        return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
    stream.ended = true;
    return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
}

bool FlacStream::queue(const FLAC__Frame& frame, const FLAC__int32* const channels[])
{
    if (!headerSeen || frame.header.channels != pcm.channels)
        return false;
    queued.erase(queued.begin(), queued.begin() + static_cast<std::ptrdiff_t>(taken));
    taken = 0;
    const std::size_t before = queued.size();
    const std::size_t count = pcm.channels;
    queued.resize(before + frame.header.blocksize * count);
    const int shift = 32 - static_cast<int>(frame.header.bits_per_sample);
    for (std::size_t channel = 0; channel < count; ++channel) {
        qint32* target = queued.data() + before + channel;
        const FLAC__int32* source = channels[channel];
        for (std::size_t i = 0; i < frame.header.blocksize; ++i, target += count)
            *target = static_cast<qint32>(static_cast<quint32>(source[i]) << shift);
    }
    return true;
}

std::optional<AudioBlock> FlacStream::read()
{
    const std::size_t wanted = framesPerBlock(pcm.channels);
    while (queuedFrames() < wanted && !ended) {
        // The states behind the end are failures, which the call itself need not report.
        if (!FLAC__stream_decoder_process_single(decoder.get())
            || FLAC__stream_decoder_get_state(decoder.get()) >= FLAC__STREAM_DECODER_END_OF_STREAM)
            ended = true;
    }
    const std::size_t frames = std::min(queuedFrames(), wanted);
    if (frames == 0)
        return std::nullopt;
    const std::size_t count = frames * pcm.channels;
    const qint32* first = queued.data() + taken;
    AudioBlock block{QList<qint32>(first, first + count), frames};
    taken += count;
    return block;
}

} // namespace

FlacDecoder::FlacDecoder() : StreamDecoder(make<AudioStream, FlacStream>) {}
