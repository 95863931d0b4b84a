#include "codecs/media/FfmpegFrameBytes.h"

#include "codecs/media/FfmpegHandles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

extern "C" {
#include <libavutil/frame.h>
}

namespace {

/// Two channels of four floats: the left one rises, the right one is silent.
FfmpegPointer<AVFrame> someFrame()
{
    FfmpegPointer<AVFrame> frame(av_frame_alloc());
    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->nb_samples = 4;
    frame->sample_rate = 44100;
    av_channel_layout_default(&frame->ch_layout, 2);
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    for (int i = 0; i < 4; ++i) {
        reinterpret_cast<float*>(frame->extended_data[0])[i] = 0.25f * static_cast<float>(i);
        reinterpret_cast<float*>(frame->extended_data[1])[i] = 0.0f;
    }
    return frame;
}

constexpr AudioFormat stereo{44100, 2, 16};

} // namespace

TEST(FfmpegFrameBytes, APartOfAFrameIsPackedInterleaved)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    std::vector<quint8> bytes;
    packFrame(*frame, 1, 2, stereo, bytes);
    // 0.25 and 0.5 of 32768 are 0x2000 and 0x4000.
    EXPECT_EQ(bytes, (std::vector<quint8>{0x00, 0x20, 0, 0, 0x00, 0x40, 0, 0}));
}

TEST(FfmpegFrameBytes, NothingOfAFrameIsNothing)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    std::vector<quint8> bytes{1, 2, 3};
    packFrame(*frame, 4, 0, stereo, bytes);
    EXPECT_TRUE(bytes.empty());
}
