#pragma once

#include <QtGlobal>

#include <vector>

struct AVFrame;

/// Whether the frame's samples fit into 16 bits without loss.
bool isAtMost16Bits(const AVFrame& frame);

/// Packs some sample frames of a decoded frame as PCM of 16 or 24 bits, interleaved,
/// the low byte first. Floats are rounded to the nearest value; wider integers
/// lose their low bits.
void packFrame(const AVFrame& frame, int first, int frames, int bits, std::vector<quint8>& bytes);
