#include "codecs/media/FfmpegHandles.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

void AvDeleter::operator()(AVCodecContext* context) const
{
    avcodec_free_context(&context);
}

void AvDeleter::operator()(AVFrame* frame) const
{
    av_frame_free(&frame);
}

void AvDeleter::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}
