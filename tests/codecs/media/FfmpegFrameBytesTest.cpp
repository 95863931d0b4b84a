#include "codecs/media/FfmpegFrameBytes.h"

#include "codecs/media/FfmpegHandles.h"

#include <gtest/gtest.h>

#include <cstdint>

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

TEST(FfmpegFrameBytes, APartOfAFrameIsInterleavedAndLeftJustified)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    const AudioBlock block = blockOfFrame(*frame, 1, 2, stereo);
    EXPECT_EQ(block.frames, 2U);
    // 0.25 and 0.5 of full scale.
    EXPECT_EQ(block.samples, (QList<qint32>{0x20000000, 0, 0x40000000, 0}));
}

TEST(FfmpegFrameBytes, NothingOfAFrameIsNothing)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    const AudioBlock block = blockOfFrame(*frame, 4, 0, stereo);
    EXPECT_EQ(block.frames, 0U);
    EXPECT_TRUE(block.samples.isEmpty());
}

TEST(FfmpegFrameBytes, FloatsTurnIntoTheNearestValueOfTheWidth)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    auto* left = reinterpret_cast<float*>(frame->extended_data[0]);
    left[0] = -1.0f;
    left[1] = 1.0f;            // no value holds it
    left[2] = 0.75f / 8388608; // of one step of 24 bits
    left[3] = -0.75f / 32768;  // of one step of 16 bits
    AudioFormat wide = stereo;
    wide.bitsPerSample = 24;
    const auto lefts = [&](const AudioFormat& format) {
        const AudioBlock block = blockOfFrame(*frame, 0, 4, format);
        return QList<qint32>{block.samples[0], block.samples[2], block.samples[4], block.samples[6]};
    };
    // -0.75 steps of 16 bits are -192 of 24 bits, which has 256 to the step.
    EXPECT_EQ(lefts(wide), (QList<qint32>{INT32_MIN, 0x7FFFFF00, 1 << 8, -192 * (1 << 8)}));
    EXPECT_EQ(lefts(stereo), (QList<qint32>{INT32_MIN, 0x7FFF0000, 0, -1 * (1 << 16)}));
}

TEST(FfmpegFrameBytes, IntegersAreLeftJustifiedAndLoseTheirLowBits)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    AudioFormat wide = stereo;
    wide.bitsPerSample = 24;

    frame->format = AV_SAMPLE_FMT_S32P;
    reinterpret_cast<qint32*>(frame->extended_data[0])[0] = 0x123456FF;
    reinterpret_cast<qint32*>(frame->extended_data[1])[0] = -1;
    EXPECT_EQ(blockOfFrame(*frame, 0, 1, wide).samples, (QList<qint32>{0x12345600, -256}));
    EXPECT_EQ(blockOfFrame(*frame, 0, 1, stereo).samples, (QList<qint32>{0x12340000, -65536}));

    frame->format = AV_SAMPLE_FMT_S16P;
    reinterpret_cast<qint16*>(frame->extended_data[0])[0] = 0x1234;
    reinterpret_cast<qint16*>(frame->extended_data[1])[0] = -1;
    for (const AudioFormat& format : {stereo, wide})
        EXPECT_EQ(blockOfFrame(*frame, 0, 1, format).samples, (QList<qint32>{0x12340000, -65536}));
}

// One channel where two were announced: it is heard from both, as loud.
TEST(FfmpegFrameBytes, AFrameOfOtherChannelsIsMappedToThoseAnnounced)
{
    const auto frame = someFrame();
    ASSERT_NE(frame, nullptr);
    av_channel_layout_default(&frame->ch_layout, 1);
    const AudioBlock block = blockOfFrame(*frame, 1, 2, stereo);
    EXPECT_EQ(block.frames, 2U);
    EXPECT_EQ(block.samples, (QList<qint32>{0x20000000, 0x20000000, 0x40000000, 0x40000000}));
}
