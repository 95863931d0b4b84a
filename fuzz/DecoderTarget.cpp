#include "fuzz/DecoderTarget.h"

#include "base/ByteOrder.h"
#include "codecs/IAudioDecoder.h"
#include "codecs/Mutation.h"
#include "fuzz/Promise.h"
#include "fuzz/ScratchFile.h"

#include <QByteArray>

namespace {

// A header may state hours of silence, and gets them; this much of it is enough.
constexpr quint64 mostSamples = 32 * 1024;
constexpr int mostBlocks = 100;
constexpr quint16 mostChannels = 32;

/// Filters whole seconds of one-bit audio for one block, which teaches nothing.
bool hasHugeBlocks(const QByteArray& bytes)
{
    constexpr qsizetype channels = 52;
    constexpr qsizetype blockBytes = 72;
    return bytes.startsWith("DSD ") && bytes.size() >= blockBytes + 4
           && quint64{byteorder::readLittle<quint32>(bytes.constData() + channels)}
                      * byteorder::readLittle<quint32>(bytes.constData() + blockBytes)
                  > mostSamples;
}

void play(IAudioDecoder& decoder)
{
    const AudioFormat format = decoder.format();
    if (format.channels > mostChannels)
        return;
    quint64 samples = 0;
    for (int blocks = 0; blocks < mostBlocks && samples < mostSamples; ++blocks) {
        const auto block = decoder.read();
        fuzz::require(decoder.format() == format, "the format stays");
        if (!block) {
            fuzz::require(!decoder.read(), "after the end nothing follows");
            break;
        }
        const auto count = static_cast<quint64>(block->samples.size());
        fuzz::require(count == block->frames * format.channels, "a block holds whole frames");
        samples += count;
    }
}

} // namespace

void fuzz::decoder(const char* extension, const char* bytes, size_t size)
{
    static const ScratchFile scratch(extension);
    QByteArray input(bytes, static_cast<qsizetype>(size));
    if (hasHugeBlocks(input))
        return;
    if (input.startsWith("OggS"))
        sealOggPages(input);
    scratch.write(input);

    const auto decoder = makeDecoder(scratch.path);
    require(decoder != nullptr, "the ending is known");
    if (decoder->open(scratch.path)) {
        require(!decoder->open(scratch.path), "a second open is refused");
        play(*decoder);
    }
    decoder->close();
    require(!decoder->read(), "a closed decoder delivers nothing");
    decoder->close();
}
