#include "codecs/DecoderFiles.h"

#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <QFileInfo>

#include <algorithm>

namespace decoderfiles {

static QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QList<qint32> audio(quint64 frames, int channels)
{
    QList<qint32> mixed = audiomaker::sine(frames, channels, 441, 44100, 0.4);
    const QList<qint32> high = audiomaker::sine(frames, channels, 3150, 44100, 0.1);
    for (qsizetype i = 0; i < mixed.size(); ++i)
        mixed[i] += high[i] / static_cast<qint32>(1 + i % channels);
    return mixed;
}

void encode(const QString& name, const AudioFormat& format, const QList<qint32>& samples)
{
    const QString wave = name + QStringLiteral(".source.wav");
    writeAll(wave, waveFile(format, samples));
    const QString kind = QFileInfo(name).suffix();
    ToolResult result;
    if (kind == QStringLiteral("flac"))
        result = runTool(QStringLiteral("flac"), words("-s -f -o") << name << wave);
    else if (kind == QStringLiteral("ogg"))
        result = runTool(QStringLiteral("oggenc"), words("-Q -s 1 -q 6 -o") << name << wave);
    else if (kind == QStringLiteral("opus"))
        result = runTool(QStringLiteral("opusenc"), words("--quiet --serial 1") << wave << name);
    else if (kind == QStringLiteral("wv"))
        result = runTool(QStringLiteral("wavpack"), words("-q -y") << wave << QStringLiteral("-o") << name);
    else if (kind == QStringLiteral("mp3"))
        result = runTool(QStringLiteral("lame"), words("--quiet -b 192") << wave << name);
    else
        result = runTool(QStringLiteral("ffmpeg"), words("-v error -y -i") << wave << name);
    ASSERT_TRUE(result.ok()) << name.toStdString() << ": " << result.errors.toStdString();
}

void make(const QString& name, quint64 frames)
{
    const auto bytes = static_cast<qsizetype>(frames);
    if (name.endsWith(QStringLiteral(".dsf"), Qt::CaseInsensitive))
        writeAll(name, dsf({}, bits(2 * bytes, 1)));
    else if (name.endsWith(QStringLiteral(".dff"), Qt::CaseInsensitive))
        writeAll(name, dff(dffProperties(2822400, 2), bits(2 * bytes, 1)));
    else if (name.endsWith(QStringLiteral(".wav"), Qt::CaseInsensitive))
        writeAll(name, waveFile({44100, 2, 16}, audio(frames, 2)));
    else
        encode(name, {44100, 2, 16}, audio(frames, 2));
}

void makeWithCover(const QString& name, const char* codec, quint64 frames)
{
    const QString wave = name + QStringLiteral(".source.wav");
    writeAll(wave, waveFile({44100, 2, 16}, audio(frames, 2)));
    // In one step newer programs would end the audio together with the one picture.
    const QString picture = name + QStringLiteral(".cover.png");
    const ToolResult drawn =
        runTool(QStringLiteral("ffmpeg"),
                words("-v error -y -f lavfi -i color=red:s=8x8 -frames:v 1 -pix_fmt rgba64be") << picture);
    ASSERT_TRUE(drawn.ok()) << name.toStdString() << ": " << drawn.errors.toStdString();
    const ToolResult result =
        runTool(QStringLiteral("ffmpeg"),
                words("-v error -y -i") << picture << QStringLiteral("-i") << wave
                                        << words("-map 1 -map 0 -c:v copy -disposition:v attached_pic -c:a")
                                        << QString::fromLatin1(codec) << name);
    ASSERT_TRUE(result.ok()) << name.toStdString() << ": " << result.errors.toStdString();
}

QByteArray dsf(const DsfParts& parts, const QByteArray& data)
{
    const quint64 chunkBytes =
        parts.dataChunkBytes != 0 ? parts.dataChunkBytes : static_cast<quint64>(data.size()) + 12;
    const QByteArray format =
        little(quint64{52}) + little(quint32{1}) + little(parts.formatId) + little(quint32{2})
        + little(parts.channels) + little(parts.frequency) + little(parts.bits)
        + little(quint64{8} * static_cast<quint64>(data.size()) / std::max<quint64>(parts.channels, 1))
        + little(parts.blockBytes) + little(quint32{0});
    return "DSD " + little(quint64{28}) + little(static_cast<quint64>(92 + data.size())) + little(quint64{0})
           + "fmt " + format + "data" + little(chunkBytes) + data;
}

QByteArray dffChunk(const char* id, const QByteArray& body)
{
    QByteArray chunk = id + big(static_cast<quint64>(body.size())) + body;
    if (body.size() % 2 != 0)
        chunk.append('\0');
    return chunk;
}

QByteArray dffProperties(quint32 frequency, quint16 channels)
{
    QByteArray ids;
    for (quint16 i = 0; i < channels; ++i)
        ids += "C" + QByteArray::number(100 + i);
    return dffChunk("FS  ", big(frequency)) + dffChunk("CHNL", big(channels) + ids)
           + dffChunk("CMPR", QByteArray("DSD \x0E", 5) + "not compressed\0");
}

QByteArray dff(const QByteArray& properties, const QByteArray& data)
{
    const QByteArray body = "DSD " + dffChunk("FVER", big(quint32{0x01050000}))
                            + dffChunk("PROP", "SND " + properties) + dffChunk("DSD ", data);
    return dffChunk("FRM8", body);
}

QByteArray bits(qsizetype bytes, quint32 seed)
{
    QByteArray made;
    made.reserve(bytes);
    for (const qint32 value : audiomaker::noise(static_cast<quint64>(bytes), seed))
        made.append(static_cast<char>(value >> 24));
    return made;
}

} // namespace decoderfiles
