#pragma once

#include "codecs/AudioFormat.h"

#include <vector>

struct AVFrame;

/// How wide PCM has to be to hold the frame's samples: 16 bits or, for wider ones
/// and for floats, 24. It is 0 for a format that none of the decoders here gives;
/// theirs have a plane for each channel.
int packedBits(const AVFrame& frame);

/// Some sample frames of a decoded frame, cut to the width and in the channels that
/// were announced. Floats are rounded to the nearest value of that width; wider
/// integers lose their low bits.
AudioBlock blockOfFrame(const AVFrame& frame, int first, int frames, const AudioFormat& pcm);

/// The way back, for an encoder: spreads packed PCM of 16 or 24 bits over the planes
/// of a frame that has room for it, from one of its places on.
/// @param unpacked  room that may be kept from call to call
void fillFrame(AVFrame& frame, int first, const quint8* pcm, int frames, int bits,
               std::vector<qint32>& unpacked);
