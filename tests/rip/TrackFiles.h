#pragma once

#include "rip/RipTypes.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

#include <gtest/gtest.h>

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The audio bytes of a WAV file of ours, tags behind them left out.
inline QByteArray audioOfWave(const QString& path)
{
    constexpr qsizetype headerBytes = 44;
    const QByteArray file = contentOf(path);
    return file.size() < headerBytes
               ? QByteArray()
               : file.mid(headerBytes, qFromLittleEndian<quint32>(file.constData() + headerBytes - 4));
}

/// Holds a result's checksums against sums over the audio bytes of its file,
/// written out frame by frame; positions count from 1.
inline void expectChecksums(const RipResult& result, const QByteArray& audio, qsizetype firstPosition,
                            qsizetype lastPosition)
{
    quint32 v1 = 0;
    quint32 v2 = 0;
    for (qsizetype position = firstPosition; position <= lastPosition; ++position) {
        const quint64 product = quint64{qFromLittleEndian<quint32>(audio.constData() + (position - 1) * 4)}
                                * static_cast<quint64>(position);
        v1 += static_cast<quint32>(product);
        v2 += static_cast<quint32>(product) + static_cast<quint32>(product >> 32);
    }
    EXPECT_EQ(result.crcV1, v1) << "track " << result.trackNumber;
    EXPECT_EQ(result.crcV2, v2) << "track " << result.trackNumber;
}
