#include "codecs/media/MediaReader.h"

#include "codecs/StreamChange.h"
#include "codecs/media/FfmpegFrameBytes.h"
#include "codecs/media/FfmpegHandles.h"
#include "codecs/media/FfmpegInput.h"
#include "codecs/media/Mpeg4Facts.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

class FfmpegMediaReader : public MediaReader {
public:
    bool open(const std::filesystem::path& path) override;
    bool choosePcm(int bits) override;
    AudioFormat format() const override { return pcm; }
    std::optional<quint64> duration() const override { return ticks; }
    Outcome read(AudioBlock& block) override;

private:
    bool chooseStream();
    Outcome decodeNext();
    bool feed();
    const char* gaplessTag() const;
    void setExtent(const std::optional<Mpeg4Timing>& timing);
    void measure();

    FfmpegInput container;
    FfmpegPointer<AVCodecContext> decoder;
    FfmpegPointer<AVPacket> packet{av_packet_alloc()};
    FfmpegPointer<AVFrame> current{av_frame_alloc()}; ///< decoded last time, not delivered yet
    FfmpegPointer<AVFrame> next{av_frame_alloc()};
    AVStream* stream = nullptr;
    bool draining = false;
    bool ended = false;
    AudioFormat pcm;
    std::optional<quint64> ticks;
    quint64 framesToSkip = 0;
    std::optional<quint64> statedFrames; ///< after those, and after what the library skips
    quint64 deliveredFrames = 0;
};

bool FfmpegMediaReader::open(const std::filesystem::path& path)
{
    // The library keeps to an edit list by whole packets; the samples are cut here.
    auto [timing, isPlausible] = readMpeg4Facts(path);
    if (!isPlausible)
        return false;
    container = openFfmpegInput(path, timing.has_value());
    if (container && timing && gaplessTag()) {
        timing.reset();
        container = openFfmpegInput(path, false);
    }
    if (!container || !packet || !current || !next)
        return false;
    if (!areSound(*container) || avformat_find_stream_info(container.get(), nullptr) < 0)
        return false;
    decoder = chooseStream() ? openDecoder(*stream) : nullptr;
    if (!decoder)
        return false;

    // Only a decoded frame tells the rate and the channels for certain.
    Outcome outcome = Outcome::Gap;
    while (outcome == Outcome::Gap)
        outcome = decodeNext();
    if (outcome != Outcome::Samples)
        return false;
    std::swap(current, next);
    const int channels = current->ch_layout.nb_channels;
    // The frame itself may still name the rate that the search for streams ended with.
    if (decoder->sample_rate <= 0 || channels <= 0 || channels > std::numeric_limits<quint16>::max())
        return false;
    pcm = {static_cast<quint32>(decoder->sample_rate), static_cast<quint16>(channels), 0};
    setExtent(timing);
    measure();
    return true;
}

/// The first stream of audio, whichever the file calls the better one.
bool FfmpegMediaReader::chooseStream()
{
    for (unsigned int i = 0; i < container->nb_streams; ++i) {
        AVStream* candidate = container->streams[i];
        if (!stream && candidate->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            stream = candidate;
        else
            candidate->discard = AVDISCARD_ALL;
    }
    return stream != nullptr;
}

const char* FfmpegMediaReader::gaplessTag() const
{
    const AVDictionaryEntry* entry = av_dict_get(container->metadata, "iTunSMPB", nullptr, 0);
    return entry ? entry->value : nullptr;
}

/// Hands the decoder one more packet of the stream, or the news that none is
/// left. False for a packet that it refuses.
bool FfmpegMediaReader::feed()
{
    while (av_read_frame(container.get(), packet.get()) >= 0) {
        const bool ours = packet->stream_index == stream->index;
        const int status = ours ? avcodec_send_packet(decoder.get(), packet.get()) : 0;
        av_packet_unref(packet.get());
        if (ours)
            return status >= 0;
    }
    draining = true;
    return avcodec_send_packet(decoder.get(), nullptr) >= 0;
}

MediaReader::Outcome FfmpegMediaReader::decodeNext()
{
    for (;;) {
        const int status = avcodec_receive_frame(decoder.get(), next.get());
        if (status == 0)
            return next->nb_samples > 0 ? Outcome::Samples : Outcome::Gap;
        if (status == AVERROR_EOF)
            return Outcome::End;
        if (status != AVERROR(EAGAIN) && draining)
            return Outcome::Failure;
        if (status != AVERROR(EAGAIN))
            return Outcome::Gap;
        if (draining)
            return Outcome::End;
        if (!feed())
            return draining ? Outcome::Failure : Outcome::Gap;
    }
}

/// The audio within what is decoded: by the edit list, or by the tag of players,
/// whose fourth hexadecimal number is the length after delay and padding.
void FfmpegMediaReader::setExtent(const std::optional<Mpeg4Timing>& timing)
{
    unsigned long long frames = 0;
    if (timing) {
        const auto toFrames = [&](std::uint64_t units) {
            return static_cast<quint64>(av_rescale(static_cast<std::int64_t>(units), pcm.sampleRate,
                                                   static_cast<std::int64_t>(timing->unitsASecond)));
        };
        framesToSkip = toFrames(timing->start);
        statedFrames = toFrames(timing->length);
    } else if (const char* tag = gaplessTag();
               tag && std::sscanf(tag, "%*x %*x %*x %llx", &frames) == 1 && frames > 0) {
        statedFrames = frames;
    }
}

void FfmpegMediaReader::measure()
{
    constexpr std::int64_t ticksASecond = 10000000;
    const auto rate = static_cast<int>(pcm.sampleRate);
    std::int64_t frames = 0;
    if (statedFrames) {
        frames =
            static_cast<std::int64_t>(std::min<quint64>(*statedFrames, std::numeric_limits<qint64>::max()));
    } else if (stream->duration > 0) {
        frames = av_rescale_q(stream->duration, stream->time_base, {1, rate});
        // This container's duration still holds what the encoder put before the audio.
        if (stream->codecpar->codec_id == AV_CODEC_ID_MP3 && stream->start_time > 0)
            frames -= av_rescale_q(stream->start_time, stream->time_base, {1, rate});
    } else if (container->duration > 0) {
        frames = av_rescale(container->duration, rate, AV_TIME_BASE);
    }
    if (frames <= 0)
        return;
    // A tick more than the audio fills, so that its last frame is counted.
    const std::int64_t whole = av_rescale(frames, ticksASecond, rate);
    if (whole > 0 && whole < std::numeric_limits<std::int64_t>::max())
        ticks = static_cast<quint64>(whole) + 1;
}

bool FfmpegMediaReader::choosePcm(int bits)
{
    if (bits != packedBits(*current))
        return false;
    pcm.bitsPerSample = static_cast<quint16>(bits);
    return true;
}

MediaReader::Outcome FfmpegMediaReader::read(AudioBlock& block)
{
    if (ended)
        return Outcome::End;
    const Outcome outcome = decodeNext();
    if (outcome == Outcome::Gap)
        return Outcome::Gap;
    const auto rate = static_cast<quint32>(decoder->sample_rate);
    const bool changed = outcome == Outcome::Samples && rate != pcm.sampleRate;
    if (changed)
        reportRateChange(pcm.sampleRate, rate);
    ended = outcome != Outcome::Samples || changed;

    const auto held = static_cast<quint64>(current->nb_samples);
    const quint64 skipped = std::min(framesToSkip, held);
    framesToSkip -= skipped;
    quint64 wanted = held - skipped;
    if (statedFrames)
        wanted = std::min(wanted, *statedFrames - deliveredFrames);
    block = blockOfFrame(*current, static_cast<int>(skipped), static_cast<int>(wanted), pcm);
    deliveredFrames += wanted;
    ended = ended || deliveredFrames == statedFrames;
    std::swap(current, next);
    return wanted > 0 ? Outcome::Samples : Outcome::Gap;
}

} // namespace

std::unique_ptr<MediaReader> makeMediaReader()
{
    return std::make_unique<FfmpegMediaReader>();
}
