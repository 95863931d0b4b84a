#include "codecs/EncoderRun.h"

#include <QFile>

#include <algorithm>

QByteArray readAll(const QString& name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

AudioBlock makeBlock(const QList<qint32>& samples, int channels)
{
    return {samples, static_cast<quint64>(samples.size() / channels)};
}

QByteArray encode(EncoderId id, const QString& name, const AudioFormat& format, const QList<qint32>& samples)
{
    const auto encoder = makeEncoder(id);
    EXPECT_TRUE(encoder->open(toPath(name), format));
    EXPECT_TRUE(encoder->write(makeBlock(samples, format.channels)));
    EXPECT_TRUE(encoder->close());
    return readAll(name);
}

QByteArray encodeInPieces(EncoderId id, const QString& name, const AudioFormat& format,
                          const QList<qint32>& samples, const QList<int>& frameCounts)
{
    const auto encoder = makeEncoder(id);
    EXPECT_TRUE(encoder->open(toPath(name), format));
    qsizetype turn = 0;
    for (qsizetype place = 0; place < samples.size(); ++turn) {
        const qsizetype wanted = qsizetype{frameCounts[turn % frameCounts.size()]} * format.channels;
        const qsizetype count = std::min(wanted, samples.size() - place);
        EXPECT_TRUE(encoder->write(makeBlock(samples.mid(place, count), format.channels)));
        place += count;
    }
    EXPECT_TRUE(encoder->close());
    return readAll(name);
}

QByteArray littleEndian(const QList<qint32>& samples, int bits)
{
    QByteArray bytes;
    for (const qint32 sample : samples) {
        for (int shift = 32 - bits; shift < 32; shift += 8)
            bytes.append(static_cast<char>((sample >> shift) & 0xFF));
    }
    return bytes;
}

QByteArray bigEndian(const QList<qint32>& samples, int bits)
{
    QByteArray bytes;
    for (const qint32 sample : samples) {
        for (int shift = 24; shift >= 32 - bits; shift -= 8)
            bytes.append(static_cast<char>((sample >> shift) & 0xFF));
    }
    return bytes;
}
