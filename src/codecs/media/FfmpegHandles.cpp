#include "codecs/media/FfmpegHandles.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

void FfmpegDeleter::operator()(AVCodecContext* context) const
{
    avcodec_free_context(&context);
}

void FfmpegDeleter::operator()(AVFrame* frame) const
{
    av_frame_free(&frame);
}

void FfmpegDeleter::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}
