#pragma once

#include <memory>

struct AVCodecContext;
struct AVFrame;
struct AVPacket;

/// Owns what reading and writing through FFmpeg have in common.
struct FfmpegDeleter {
    void operator()(AVCodecContext* context) const;
    void operator()(AVFrame* frame) const;
    void operator()(AVPacket* packet) const;
};

template<typename Handle>
using FfmpegPointer = std::unique_ptr<Handle, FfmpegDeleter>;
