#include "codecs/ogg/ChainFile.h"

#include "codecs/Mutation.h"

/// No two streams of one Ogg file may have the same number.
static void numberPages(QByteArray& stream, quint32 number)
{
    constexpr qsizetype numberOffset = 14;
    for (qsizetype page = stream.indexOf("OggS"); page >= 0; page = stream.indexOf("OggS", page + 4))
        stream.replace(page + numberOffset, 4, little(number));
    sealOggPages(stream);
}

/// The first frame says how much of one stream is not audio, and is not for two.
static QByteArray withoutEncodersTag(const QByteArray& stream, const AudioFormat& format)
{
    constexpr quint32 bitsASecond = 192000;
    return stream.mid(144 * bitsASecond / format.sampleRate);
}

void makeChain(const QString& name, const QList<AudioFormat>& formats, quint64 frames)
{
    QByteArray chain;
    for (const AudioFormat& format : formats) {
        decoderfiles::encode(name, format, decoderfiles::audio(frames, format.channels));
        QByteArray stream = readAll(name);
        if (stream.startsWith("OggS"))
            numberPages(stream, static_cast<quint32>(chain.size()));
        chain += name.endsWith(QStringLiteral(".mp3")) ? withoutEncodersTag(stream, format) : stream;
    }
    writeAll(name, chain);
}
