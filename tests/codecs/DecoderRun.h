#pragma once

#include "codecs/EncoderRun.h"
#include "codecs/IAudioDecoder.h"

#include "base/ByteOrder.h"

/// All that a decoder made of a file.
struct Decoded {
    bool opened = false;
    AudioFormat format;
    std::optional<quint64> total;
    QList<qint32> samples;
    QList<quint64> blocks; ///< frames of each block

    quint64 frames() const;
};

/// A new decoder's open, reads to the end, and close. Every block is checked to
/// hold as many samples as its frames ask for, and to stay below 16 MiB.
Decoded decode(IAudioDecoder& decoder, const QString& name);

/// The same with the decoder that the name's ending picks.
Decoded decode(const QString& name);

template<typename Decoder>
Decoded decodeWith(const QString& name)
{
    Decoder decoder;
    return decode(decoder, name);
}

void writeAll(const QString& name, const QByteArray& bytes);

template<typename Integer>
QByteArray little(Integer value)
{
    QByteArray bytes(sizeof value, '\0');
    byteorder::writeLittle(bytes.data(), value);
    return bytes;
}

template<typename Integer>
QByteArray big(Integer value)
{
    QByteArray bytes(sizeof value, '\0');
    byteorder::writeBig(bytes.data(), value);
    return bytes;
}

/// A chunk with its four letters and a size of 32 bits, without a pad byte.
QByteArray littleChunk(const char* id, const QByteArray& body);
QByteArray bigChunk(const char* id, const QByteArray& body);

/// An extensible RIFF WAVE file of left-justified samples, of which the top
/// `bitsPerSample` are kept in as many whole bytes as they need. 8-bit samples are
/// stored unsigned, as the format asks for.
QByteArray waveFile(const AudioFormat& format, const QList<qint32>& samples);

/// Left-justified samples with all but the top bits cleared.
QList<qint32> keepBits(const QList<qint32>& samples, int bits);

/// What FFmpeg's own program makes of a file: left-justified 32-bit samples.
QList<qint32> decodeWithFfmpeg(const QString& name);

/// What stands in a file of raw 16-bit samples, left-justified.
QList<qint32> fromRaw16(const QByteArray& bytes);

/// The largest distance of two sample lists of the same length, in steps of the
/// lowest bit of samples so wide.
double largestDifference(const QList<qint32>& a, const QList<qint32>& b, int bits);

/// Bit patterns as samples.
QList<qint32> patterns(const QList<quint32>& bits);

/// One, two and six channels of each width.
std::vector<AudioFormat> formatsOfWidths(std::initializer_list<quint16> widths);

/// The name of a test case for a format.
std::string nameOfFormat(const ::testing::TestParamInfo<AudioFormat>& instance);
