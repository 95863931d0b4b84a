#pragma once

#include <QtGlobal>

#include <cstddef>

class OutputFile;
struct AudioBlock;

/// Left-justified 32-bit samples cut to 16 or 24 bits, as bytes of a file. The
/// low bits are dropped, with neither rounding nor dither.
enum class PcmLayout { Little16, Little24, Big16, Big24 };

/// Bytes of one sample: 2 or 3.
constexpr int pcmSampleBytes(PcmLayout layout)
{
    return layout == PcmLayout::Little16 || layout == PcmLayout::Big16 ? 2 : 3;
}

/// Cuts `count` samples into `target`, which has room for count sample sizes.
void packPcm(const qint32* samples, std::size_t count, PcmLayout layout, quint8* target);

/// Writes all samples of the block through a small buffer, whatever its frame
/// count says. Returns whether the file is good.
bool writePcm(OutputFile& file, const AudioBlock& block, PcmLayout layout);
