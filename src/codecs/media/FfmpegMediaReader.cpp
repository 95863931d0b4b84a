#include "base/ByteOrder.h"
#include "codecs/StreamChange.h"
#include "codecs/media/FfmpegFrameBytes.h"
#include "codecs/media/FfmpegHandles.h"
#include "codecs/media/MediaReader.h"
#include "codecs/media/Mpeg4Timing.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

namespace {

// Above this an ALAC frame is no music; the library would allocate for 16 million.
constexpr quint32 mostFramesInAlacFrame = 65536;

// The index of a day's audio takes less. A table that hides from the look at the
// boxes ends here.
constexpr std::size_t mostBytesInOnePiece = 512 * 1024 * 1024;

struct InputDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

using InputPointer = std::unique_ptr<AVFormatContext, InputDeleter>;

InputPointer openContainer(const std::filesystem::path& path, bool ignoreEdits)
{
    AVDictionary* options = nullptr;
    // A name that looks like an address, and a list of other files, stay unopened.
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", "mp3,aac,mov", 0);
    // Looking for the streams decodes what it finds, and a cover can claim gigabytes.
    av_dict_set(&options, "codec_whitelist", "mp1float,mp1,mp2float,mp2,mp3float,mp3,aac,aac_fixed,alac", 0);
    if (ignoreEdits)
        av_dict_set(&options, "ignore_editlist", "1", 0);
    AVFormatContext* context = nullptr;
    const std::string name = "file:" + path.string();
    const int status = avformat_open_input(&context, name.c_str(), nullptr, &options);
    av_dict_free(&options);
    return InputPointer(status < 0 ? nullptr : context);
}

bool isKnownCodec(AVCodecID id)
{
    return id == AV_CODEC_ID_MP1 || id == AV_CODEC_ID_MP2 || id == AV_CODEC_ID_MP3 || id == AV_CODEC_ID_AAC
           || id == AV_CODEC_ID_ALAC;
}

bool isSound(const AVCodecParameters& parameters)
{
    constexpr int alacFrameLengthOffset = 12;
    return parameters.codec_id != AV_CODEC_ID_ALAC
           || (parameters.extradata_size >= alacFrameLengthOffset + 4
               && byteorder::readBig<quint32>(parameters.extradata + alacFrameLengthOffset)
                      <= mostFramesInAlacFrame);
}

/// Before any decoder is opened, which would already allocate by what it reads.
bool areSound(const AVFormatContext& container)
{
    return std::all_of(container.streams, container.streams + container.nb_streams,
                       [](const AVStream* stream) { return isSound(*stream->codecpar); });
}

class FfmpegReader : public MediaReader {
public:
    bool open(const std::filesystem::path& path) override;
    bool choosePcm(int bits) override;
    AudioFormat format() const override { return pcm; }
    std::optional<quint64> duration() const override { return ticks; }
    Outcome read(std::vector<quint8>& pcmBytes) override;

private:
    bool chooseStream();
    bool openDecoder();
    Outcome decodeNext();
    bool feed();
    const char* gaplessTag() const;
    void setExtent(const std::optional<Mpeg4Timing>& timing);
    void measure();

    InputPointer container;
    AvPointer<AVCodecContext> decoder;
    AvPointer<AVPacket> packet{av_packet_alloc()};
    AvPointer<AVFrame> current{av_frame_alloc()}; ///< decoded last time, not delivered yet
    AvPointer<AVFrame> next{av_frame_alloc()};
    AVStream* stream = nullptr;
    bool draining = false;
    bool ended = false;
    AudioFormat pcm;
    std::optional<quint64> ticks;
    quint64 framesToSkip = 0;
    std::optional<quint64> statedFrames; ///< after those, and after what the library skips
    quint64 deliveredFrames = 0;
};

bool FfmpegReader::open(const std::filesystem::path& path)
{
    av_log_set_level(AV_LOG_QUIET);
    av_max_alloc(mostBytesInOnePiece);
    // The library keeps to an edit list by whole packets; the samples are cut here.
    auto [timing, isPlausible] = readMpeg4Facts(path);
    if (!isPlausible)
        return false;
    container = openContainer(path, timing.has_value());
    if (container && timing && gaplessTag()) {
        timing.reset();
        container = openContainer(path, false);
    }
    if (!container || !packet || !current || !next)
        return false;
    if (!areSound(*container) || avformat_find_stream_info(container.get(), nullptr) < 0)
        return false;
    if (!chooseStream() || !openDecoder())
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
bool FfmpegReader::chooseStream()
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

const char* FfmpegReader::gaplessTag() const
{
    const AVDictionaryEntry* entry = av_dict_get(container->metadata, "iTunSMPB", nullptr, 0);
    return entry ? entry->value : nullptr;
}

bool FfmpegReader::openDecoder()
{
    // What is found by reading on is asked again.
    if (!isKnownCodec(stream->codecpar->codec_id) || !isSound(*stream->codecpar))
        return false;
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec)
        return false;
    decoder.reset(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream->codecpar) < 0)
        return false;
    decoder->pkt_timebase = stream->time_base;
    decoder->thread_count = 1;
    return avcodec_open2(decoder.get(), codec, nullptr) == 0;
}

/// Hands the decoder one more packet of the stream, or the news that none is
/// left. False for a packet that it refuses.
bool FfmpegReader::feed()
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

MediaReader::Outcome FfmpegReader::decodeNext()
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
void FfmpegReader::setExtent(const std::optional<Mpeg4Timing>& timing)
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

void FfmpegReader::measure()
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

bool FfmpegReader::choosePcm(int bits)
{
    if (bits != packedBits(*current))
        return false;
    pcm.bitsPerSample = static_cast<quint16>(bits);
    return true;
}

MediaReader::Outcome FfmpegReader::read(std::vector<quint8>& pcmBytes)
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
    packFrame(*current, static_cast<int>(skipped), static_cast<int>(wanted), pcm, pcmBytes);
    deliveredFrames += wanted;
    ended = ended || deliveredFrames == statedFrames;
    std::swap(current, next);
    return wanted > 0 ? Outcome::Samples : Outcome::Gap;
}

} // namespace

std::unique_ptr<MediaReader> makeMediaReader()
{
    return std::make_unique<FfmpegReader>();
}
