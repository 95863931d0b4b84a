#pragma once

#include "base/FilePath.h"
#include "codecs/AudioFormat.h"
#include "codecs/IAudioEncoder.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A folder of its own for every test, and the steps that all encoder tests share.
class EncoderTest : public ::testing::Test {
protected:
    QString file(const char* name) const { return folder.filePath(QString::fromUtf8(name)); }

    QTemporaryDir folder;
};

QByteArray readAll(const QString& name);

/// A block with the right frame count.
AudioBlock makeBlock(const QList<qint32>& samples, int channels);

/// A new encoder's open, one write and close, each expected to succeed; the
/// bytes of the file.
QByteArray encode(EncoderId id, const QString& name, const AudioFormat& format, const QList<qint32>& samples);

/// The same, with the samples cut into blocks whose frame counts go round the list.
QByteArray encodeInPieces(EncoderId id, const QString& name, const AudioFormat& format,
                          const QList<qint32>& samples, const QList<int>& frameCounts);

/// The samples cut to 16 or 24 bits, each worked out by itself, low byte first.
QByteArray littleEndian(const QList<qint32>& samples, int bits);

/// The same with the high byte first.
QByteArray bigEndian(const QList<qint32>& samples, int bits);
