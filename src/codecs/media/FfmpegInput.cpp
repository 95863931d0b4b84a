#include "codecs/media/FfmpegInput.h"

#include "base/ByteOrder.h"
#include "base/FilePath.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <QtGlobal>

#include <algorithm>
#include <string>

namespace {

// Above this an ALAC frame is no music; the library would allocate for 16 million.
constexpr quint32 mostFramesInAlacFrame = 65536;

// The index of a day's audio takes less. A table that hides from the look at the
// boxes ends here.
constexpr std::size_t mostBytesInOnePiece = 512 * 1024 * 1024;

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

} // namespace

void FfmpegInputCloser::operator()(AVFormatContext* context) const
{
    avformat_close_input(&context);
}

FfmpegInput openFfmpegInput(const std::filesystem::path& path, bool ignoreEdits)
{
    av_log_set_level(AV_LOG_QUIET);
    av_max_alloc(mostBytesInOnePiece);
    AVDictionary* options = nullptr;
    // A name that looks like an address, and a list of other files, stay unopened.
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", "mp3,aac,mov", 0);
    // Looking for the streams decodes what it finds, and a cover can claim gigabytes.
    av_dict_set(&options, "codec_whitelist", "mp1float,mp1,mp2float,mp2,mp3float,mp3,aac,aac_fixed,alac", 0);
    if (ignoreEdits)
        av_dict_set(&options, "ignore_editlist", "1", 0);
    AVFormatContext* context = nullptr;
    const std::string name = "file:" + utf8Path(path);
    const int status = avformat_open_input(&context, name.c_str(), nullptr, &options);
    av_dict_free(&options);
    return FfmpegInput(status < 0 ? nullptr : context);
}

bool areSound(const AVFormatContext& container)
{
    return std::all_of(container.streams, container.streams + container.nb_streams,
                       [](const AVStream* stream) { return isSound(*stream->codecpar); });
}

FfmpegPointer<AVCodecContext> openDecoder(const AVStream& stream)
{
    // What is found by reading on is asked again.
    if (!isKnownCodec(stream.codecpar->codec_id) || !isSound(*stream.codecpar))
        return nullptr;
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec)
        return nullptr;
    FfmpegPointer<AVCodecContext> decoder(avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        return nullptr;
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = 1;
    return avcodec_open2(decoder.get(), codec, nullptr) == 0 ? std::move(decoder) : nullptr;
}
