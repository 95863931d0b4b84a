#pragma once

#include <QtGlobal>

#include <cstddef>

enum class ByteOrder { Little, Big };

/// Makes left-justified 32-bit samples of packed signed integers of 16, 24 or 32
/// bits. Of any other width there is nothing to be made, and the target stays.
void unpackPcm(const quint8* bytes, std::size_t count, int bits, ByteOrder order, qint32* target);

/// The widths that unpackPcm knows.
constexpr bool isUnpackable(int bits)
{
    return bits == 16 || bits == 24 || bits == 32;
}
