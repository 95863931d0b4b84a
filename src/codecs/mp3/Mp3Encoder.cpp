#include "codecs/mp3/Mp3Encoder.h"

#include "codecs/BlockPieces.h"
#include "codecs/EncoderOptions.h"
#include "codecs/NoThrow.h"

#include <lame/lame.h>

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t framesPerCall = 16 * 1024;
constexpr std::size_t flushBytes = 7200;
constexpr std::size_t tagFrameBytes = 2880;
constexpr int constantKbits = 320;
constexpr int encodingQuality = 2;

// The bound that LAME gives for one call.
constexpr std::size_t outputBytes(std::size_t frames)
{
    return flushBytes + frames + frames / 4;
}

void configure(lame_t lame, const AudioFormat& format)
{
    lame_set_in_samplerate(lame, static_cast<int>(format.sampleRate));
    lame_set_num_channels(lame, format.channels);
    lame_set_quality(lame, encodingQuality);
    if (encoderOptions.mp3UseVbr) {
        lame_set_VBR(lame, vbr_mtrh);
        lame_set_VBR_quality(lame, 0.0f);
    } else {
        lame_set_VBR(lame, vbr_off);
        lame_set_brate(lame, constantKbits);
    }
    lame_set_bWriteVbrTag(lame, 1);
}

} // namespace

void Mp3Encoder::Deleter::operator()(lame_global_struct* handle) const
{
    lame_close(handle);
}

Mp3Encoder::Mp3Encoder() = default;
Mp3Encoder::~Mp3Encoder() = default;

bool Mp3Encoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    return withoutThrowing([&] { return openFile(path, format); });
}

bool Mp3Encoder::openFile(const std::filesystem::path& path, const AudioFormat& format)
{
    if (lame)
        return false;
    // A file is made when the library has taken the format.
    Handle started(lame_init());
    if (!started)
        return false;
    configure(started.get(), format);
    if (lame_init_params(started.get()) < 0 || !file.open(path))
        return false;
    channels = format.channels;
    lame = std::move(started);
    return true;
}

bool Mp3Encoder::write(const AudioBlock& block)
{
    return file.attempt([&] { return lame && writeBlock(block); });
}

bool Mp3Encoder::writeBlock(const AudioBlock& block)
{
    const auto take = [this](const qint32* samples, std::size_t frames) { return encode(samples, frames); };
    return passOnInPieces(block, channels, framesPerCall, take) && file.good();
}

bool Mp3Encoder::encode(const qint32* samples, std::size_t frames)
{
    left.resize(std::max(left.size(), frames));
    right.resize(std::max(right.size(), frames));
    encoded.resize(std::max(encoded.size(), outputBytes(frames)));

    const bool paired = channels >= 2;
    const std::size_t step = std::max<quint16>(channels, 1);
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = samples[i * step];
        right[i] = samples[i * step + (paired ? 1 : 0)];
    }
    const int produced =
        lame_encode_buffer_int(lame.get(), left.data(), paired ? right.data() : nullptr,
                               static_cast<int>(frames), encoded.data(), static_cast<int>(encoded.size()));
    return produced >= 0 && file.write(encoded.data(), static_cast<std::size_t>(produced));
}

bool Mp3Encoder::close()
{
    if (!lame)
        return false;
    file.attempt([this] { return writeTail(); });
    lame.reset();
    return file.finish();
}

bool Mp3Encoder::writeTail()
{
    encoded.resize(std::max(encoded.size(), flushBytes));
    const int flushed = lame_encode_flush(lame.get(), encoded.data(), static_cast<int>(encoded.size()));
    if (flushed > 0)
        file.write(encoded.data(), static_cast<std::size_t>(flushed));

    std::array<unsigned char, tagFrameBytes> tagFrame;
    const std::size_t size = lame_get_lametag_frame(lame.get(), tagFrame.data(), tagFrame.size());
    if (size >= 1 && size <= tagFrame.size()) {
        file.seek(0);
        file.write(tagFrame.data(), size);
    }
    return file.good();
}
