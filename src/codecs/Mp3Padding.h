#pragma once

#include "codecs/CFile.h"

#include <cstdint>

/// Frames of silence that an MP3 encoder says it put behind the audio; 0 where
/// the file says nothing.
std::uint32_t mp3EndPadding(const std::filesystem::path& path);
