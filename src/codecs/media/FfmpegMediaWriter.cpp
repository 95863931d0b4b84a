#include "codecs/media/MediaWriter.h"

#include "codecs/OutputFile.h"
#include "codecs/media/FfmpegFrameBytes.h"
#include "codecs/media/FfmpegHandles.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <vector>

namespace {

constexpr int bitsPerByte = 8;

// The arrangements that ALAC defines, by their number of channels.
constexpr std::array<std::uint64_t, 8> layouts{
    AV_CH_LAYOUT_MONO,         AV_CH_LAYOUT_STEREO,
    AV_CH_LAYOUT_SURROUND,     AV_CH_LAYOUT_4POINT0,
    AV_CH_LAYOUT_5POINT0_BACK, AV_CH_LAYOUT_5POINT1_BACK,
    AV_CH_LAYOUT_6POINT1_BACK, AV_CH_LAYOUT_7POINT1_WIDE_BACK,
};

struct ContainerDeleter {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

struct IoDeleter {
    void operator()(AVIOContext* io) const
    {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

// The bytes are constant or not by the version of the library.
template<typename Byte>
int writeBytes(void* file, Byte* bytes, int count)
{
    const bool written = static_cast<OutputFile*>(file)->write(bytes, static_cast<std::size_t>(count));
    return written ? count : AVERROR(EIO);
}

std::int64_t seekTo(void* file, std::int64_t offset, int whence)
{
    if (whence != SEEK_SET || offset < 0)
        return AVERROR(ENOSYS);
    return static_cast<OutputFile*>(file)->seek(static_cast<quint64>(offset)) ? offset : AVERROR(EIO);
}

AVSampleFormat sampleFormat(const MediaFormat& format)
{
    if (format.codec == MediaCodec::Aac)
        return AV_SAMPLE_FMT_FLTP;
    return format.pcm.bitsPerSample == 16 ? AV_SAMPLE_FMT_S16P : AV_SAMPLE_FMT_S32P;
}

class FfmpegMediaWriter final : public MediaWriter {
public:
    ~FfmpegMediaWriter() override { static_cast<void>(finish()); }

    bool open(const std::filesystem::path& path, const MediaFormat& format) override;
    bool write(const quint8* pcmBytes, std::size_t frames) override;
    bool finish() override;

private:
    bool openEncoder(const MediaFormat& format);
    bool prepareContainer();
    bool makeFrame();
    bool good() const { return whole && file.good() && io->error == 0; }
    bool encodeHeld();
    bool encode(const AVFrame* held);

    AudioFormat pcm;
    OutputFile file;
    std::unique_ptr<AVIOContext, IoDeleter> io;
    std::unique_ptr<AVFormatContext, ContainerDeleter> container;
    FfmpegPointer<AVCodecContext> encoder;
    FfmpegPointer<AVFrame> frame{av_frame_alloc()};
    FfmpegPointer<AVPacket> packet{av_packet_alloc()};
    AVStream* stream = nullptr;
    std::vector<qint32> unpacked;   ///< room for what is being filled in
    int framesOfCodec = 0;          ///< that the codec takes at a time
    int heldFrames = 0;             ///< filled in, but not encoded yet
    std::int64_t encodedFrames = 0; ///< the time of the next
    bool whole = false;             ///< nothing was lost since the header
};

bool FfmpegMediaWriter::open(const std::filesystem::path& path, const MediaFormat& format)
{
    av_log_set_level(AV_LOG_QUIET);
    // A file is made when all that could refuse the format has been asked.
    if (!frame || !packet || !openEncoder(format) || !prepareContainer() || !makeFrame() || !file.open(path))
        return false;
    pcm = format.pcm;
    whole = avformat_write_header(container.get(), nullptr) >= 0;
    if (!whole)
        file.abandon();
    return whole;
}

bool FfmpegMediaWriter::openEncoder(const MediaFormat& format)
{
    constexpr int mostRate = std::numeric_limits<int>::max();
    const AudioFormat& wanted = format.pcm;
    const bool isAac = format.codec == MediaCodec::Aac;
    const AVCodec* codec = avcodec_find_encoder(isAac ? AV_CODEC_ID_AAC : AV_CODEC_ID_ALAC);
    if (!codec || wanted.sampleRate == 0 || wanted.sampleRate > mostRate || wanted.channels == 0
        || wanted.channels > layouts.size())
        return false;
    encoder.reset(avcodec_alloc_context3(codec));
    if (!encoder || av_channel_layout_from_mask(&encoder->ch_layout, layouts[wanted.channels - 1u]) < 0)
        return false;
    encoder->sample_rate = static_cast<int>(wanted.sampleRate);
    encoder->time_base = {1, encoder->sample_rate};
    encoder->sample_fmt = sampleFormat(format);
    encoder->bits_per_raw_sample = wanted.bitsPerSample;
    if (isAac)
        encoder->bit_rate = std::int64_t{format.bytesPerSecond} * bitsPerByte;
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return avcodec_open2(encoder.get(), codec, nullptr) == 0 && encoder->frame_size > 0;
}

/// Everything up to the first byte of the file. The index goes to the end, so that
/// tags, which grow it, never move the audio.
bool FfmpegMediaWriter::prepareContainer()
{
    constexpr int ioBytes = 64 * 1024;
    auto* buffer = static_cast<unsigned char*>(av_malloc(ioBytes));
    io.reset(avio_alloc_context(buffer, ioBytes, 1, &file, nullptr, writeBytes, seekTo));
    if (!io) {
        av_free(buffer);
        return false;
    }
    AVFormatContext* made = nullptr;
    avformat_alloc_output_context2(&made, nullptr, "ipod", nullptr);
    container.reset(made);
    stream = container ? avformat_new_stream(container.get(), nullptr) : nullptr;
    if (!stream || avcodec_parameters_from_context(stream->codecpar, encoder.get()) < 0)
        return false;
    stream->time_base = encoder->time_base;
    container->pb = io.get();
    container->flags |= AVFMT_FLAG_CUSTOM_IO;

    // The length of the audio is kept in these units; the default would round it to milliseconds.
    AVDictionary* options = nullptr;
    av_dict_set_int(&options, "movie_timescale", encoder->sample_rate, 0);
    const int status = avformat_init_output(container.get(), &options);
    av_dict_free(&options);
    return status >= 0;
}

bool FfmpegMediaWriter::makeFrame()
{
    framesOfCodec = encoder->frame_size;
    frame->nb_samples = framesOfCodec;
    frame->format = encoder->sample_fmt;
    frame->sample_rate = encoder->sample_rate;
    return av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout) == 0
           && av_frame_get_buffer(frame.get(), 0) == 0;
}

bool FfmpegMediaWriter::write(const quint8* pcmBytes, std::size_t frames)
{
    const std::size_t frameBytes = std::size_t{pcm.channels} * pcm.bitsPerSample / bitsPerByte;
    while (good() && frames > 0) {
        const auto room = static_cast<std::size_t>(framesOfCodec - heldFrames);
        const std::size_t taken = std::min(frames, room);
        if (heldFrames == 0 && av_frame_make_writable(frame.get()) < 0) {
            whole = false;
            return false;
        }
        fillFrame(*frame, heldFrames, pcmBytes, static_cast<int>(taken), pcm.bitsPerSample, unpacked);
        heldFrames += static_cast<int>(taken);
        if (heldFrames == framesOfCodec)
            whole = encodeHeld();
        pcmBytes += taken * frameBytes;
        frames -= taken;
    }
    return good();
}

bool FfmpegMediaWriter::encodeHeld()
{
    frame->nb_samples = heldFrames;
    frame->pts = encodedFrames;
    encodedFrames += heldFrames;
    heldFrames = 0;
    return encode(frame.get());
}

/// Encodes a frame, or with none what the codec still holds back.
bool FfmpegMediaWriter::encode(const AVFrame* held)
{
    if (avcodec_send_frame(encoder.get(), held) < 0)
        return false;
    for (;;) {
        const int status = avcodec_receive_packet(encoder.get(), packet.get());
        if (status == AVERROR_EOF || status == AVERROR(EAGAIN))
            return true;
        if (status < 0)
            return false;
        packet->stream_index = stream->index;
        av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
        const int written = av_write_frame(container.get(), packet.get());
        av_packet_unref(packet.get());
        if (written < 0)
            return false;
    }
}

bool FfmpegMediaWriter::finish()
{
    if (!file.isOpen())
        return false;
    if (good() && heldFrames > 0)
        whole = encodeHeld();
    whole = good() && encode(nullptr) && av_write_trailer(container.get()) >= 0;
    avio_flush(io.get());
    const bool complete = good();
    container.reset();
    return file.finish() && complete;
}

} // namespace

std::unique_ptr<MediaWriter> makeMediaWriter()
{
    return std::make_unique<FfmpegMediaWriter>();
}
