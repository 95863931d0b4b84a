#pragma once

#include "codecs/media/FfmpegHandles.h"

#include <filesystem>

struct AVFormatContext;
struct AVStream;

struct FfmpegInputCloser {
    void operator()(AVFormatContext* context) const;
};

/// A container that is open for reading. What it says is not to be trusted: it may
/// ask for memory or for other files that no music needs.
using FfmpegInput = std::unique_ptr<AVFormatContext, FfmpegInputCloser>;

/// Opens a local file of the containers that are served, and no other; null for
/// all else.
/// @param ignoreEdits  leave the edit list of an MPEG-4 file to the caller
FfmpegInput openFfmpegInput(const std::filesystem::path& path, bool ignoreEdits);

/// Whether all streams may be looked for: that opens their decoders, which allocate
/// by what they read.
bool areSound(const AVFormatContext& container);

/// A decoder of one of the codecs that are served; null for all else.
FfmpegPointer<AVCodecContext> openDecoder(const AVStream& stream);
