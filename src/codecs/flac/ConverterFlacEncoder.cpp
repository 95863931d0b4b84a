#include "codecs/flac/ConverterFlacEncoder.h"

#include "codecs/BlockPieces.h"
#include "codecs/EncoderOptions.h"
#include "codecs/NoThrow.h"
#include "codecs/OutputFile.h"

#include <FLAC/stream_encoder.h>

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t framesPerCall = 4096;
constexpr std::size_t fileBufferBytes = 256 * 1024;
constexpr int lowestLevel = 0;
constexpr int highestLevel = 8;

struct EncoderDeleter {
    void operator()(FLAC__StreamEncoder* handle) const { FLAC__stream_encoder_delete(handle); }
};
using EncoderPointer = std::unique_ptr<FLAC__StreamEncoder, EncoderDeleter>;

/// Null when there is no memory for one.
EncoderPointer configuredEncoder(const AudioFormat& format)
{
    EncoderPointer encoder(FLAC__stream_encoder_new());
    if (!encoder)
        return nullptr;
    FLAC__stream_encoder_set_channels(encoder.get(), format.channels);
    FLAC__stream_encoder_set_bits_per_sample(encoder.get(), format.bitsPerSample == 16 ? 16 : 24);
    FLAC__stream_encoder_set_sample_rate(encoder.get(), format.sampleRate);
    const int level = std::clamp(encoderOptions.flacCompressionLevel, lowestLevel, highestLevel);
    FLAC__stream_encoder_set_compression_level(encoder.get(), static_cast<quint32>(level));
    return encoder;
}

/// Only the start of a stream tells whether the library takes the format, and one
/// that is to be refused makes no file. A rate of 0 means "no audio" to newer
/// versions of the library, which take it.
bool isTaken(const AudioFormat& format)
{
    if (format.sampleRate == 0)
        return false;
    const auto discard = [](const FLAC__StreamEncoder*, const FLAC__byte[], std::size_t, quint32, quint32,
                            void*) { return FLAC__STREAM_ENCODER_WRITE_STATUS_OK; };
    const EncoderPointer trial = configuredEncoder(format);
    return trial
           && FLAC__stream_encoder_init_stream(trial.get(), discard, nullptr, nullptr, nullptr, nullptr)
                  == FLAC__STREAM_ENCODER_INIT_STATUS_OK;
}

// The library writes through the encoder's own file, as its own would keep to itself
// what only the last bytes tell of a disk that is full.

FLAC__StreamEncoderWriteStatus writeBytes(const FLAC__StreamEncoder*, const FLAC__byte bytes[],
                                          std::size_t count, quint32, quint32, void* file)
{
    return static_cast<OutputFile*>(file)->write(bytes, count)
               ? FLAC__STREAM_ENCODER_WRITE_STATUS_OK
               : FLAC__STREAM_ENCODER_WRITE_STATUS_FATAL_ERROR;
}

FLAC__StreamEncoderSeekStatus seekTo(const FLAC__StreamEncoder*, FLAC__uint64 offset, void* file)
{
    return static_cast<OutputFile*>(file)->seek(offset) ? FLAC__STREAM_ENCODER_SEEK_STATUS_OK
                                                        : FLAC__STREAM_ENCODER_SEEK_STATUS_ERROR;
}

FLAC__StreamEncoderTellStatus tellPlace(const FLAC__StreamEncoder*, FLAC__uint64* offset, void* file)
{
    *offset = static_cast<OutputFile*>(file)->position();
    return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
}

} // namespace

/// The library's encoder together with what it works on.
class ConverterFlacEncoder::Stream {
public:
    bool start(const std::filesystem::path& path, const AudioFormat& format);
    bool write(const AudioBlock& block);
    bool finish();

private:
    bool good() const { return FLAC__stream_encoder_get_state(encoder.get()) == FLAC__STREAM_ENCODER_OK; }

    bool encodeBlock(const AudioBlock& block);

    bool whole = true; ///< no block was lost
    quint16 channels = 0;
    std::vector<FLAC__int32> shifted;
    // Deleting the encoder may still write to the file.
    OutputFile file;
    EncoderPointer encoder;
};

bool ConverterFlacEncoder::Stream::start(const std::filesystem::path& path, const AudioFormat& format)
{
    if (!isTaken(format))
        return false;
    encoder = configuredEncoder(format);
    if (!encoder || !file.open(path, fileBufferBytes))
        return false;
    channels = format.channels;
    return FLAC__stream_encoder_init_stream(encoder.get(), writeBytes, seekTo, tellPlace, nullptr, &file)
           == FLAC__STREAM_ENCODER_INIT_STATUS_OK;
}

bool ConverterFlacEncoder::Stream::write(const AudioBlock& block)
{
    whole = withoutThrowing([&] { return good() && encodeBlock(block); }) && whole;
    return whole;
}

bool ConverterFlacEncoder::Stream::encodeBlock(const AudioBlock& block)
{
    const int shift = 32 - static_cast<int>(FLAC__stream_encoder_get_bits_per_sample(encoder.get()));
    return passOnInPieces(block, channels, framesPerCall, [&](const qint32* samples, std::size_t frames) {
        const std::size_t count = frames * channels;
        shifted.resize(std::max(shifted.size(), count));
        std::transform(samples, samples + count, shifted.data(),
                       [shift](qint32 sample) { return sample >> shift; });
        return FLAC__stream_encoder_process_interleaved(encoder.get(), shifted.data(),
                                                        static_cast<quint32>(frames))
               != 0;
    });
}

bool ConverterFlacEncoder::Stream::finish()
{
    // The library reports success for an encoder that had failed before.
    const bool wasGood = good() && whole;
    const bool ended = FLAC__stream_encoder_finish(encoder.get());
    return file.finish() && ended && wasGood;
}

ConverterFlacEncoder::ConverterFlacEncoder() = default;

ConverterFlacEncoder::~ConverterFlacEncoder()
{
    // Deleting the library's encoder alone would drop its last frame.
    if (stream)
        stream->finish();
}

bool ConverterFlacEncoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    if (stream)
        return false;
    return withoutThrowing([&] {
        auto started = std::make_unique<Stream>();
        if (!started->start(path, format))
            return false;
        stream = std::move(started);
        return true;
    });
}

bool ConverterFlacEncoder::write(const AudioBlock& block)
{
    return stream && stream->write(block);
}

bool ConverterFlacEncoder::close()
{
    if (!stream)
        return false;
    const bool finished = stream->finish();
    stream.reset();
    return finished;
}
