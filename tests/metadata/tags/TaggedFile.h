#pragma once

#include "metadata/tags/TagWriter.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// One frame of an ID3v2 tag, as its bytes stand in the file.
struct Id3Frame {
    QByteArray id;
    QByteArray payload;
};

/// A folder with untagged audio, and eyes that are not those of the tag writer.
class TaggedFileTest : public ::testing::Test {
protected:
    QString file(const char* name) const { return folder.filePath(QString::fromUtf8(name)); }

    /// A short untagged file by an independent encoder, by the suffix of the
    /// name; `options` go before the output.
    QString makeAudio(const char* name, const QStringList& options = {}) const;

    QTemporaryDir folder;
};

/// Everything set: 3 of 12, disc 1 of 2, a cover of 40 by 30 points.
TagData fullTags();
QPixmap redCover();

/// The tags of the whole file by ffprobe, keys in lower case.
QMap<QString, QString> probedTags(const QString& path);

/// The embedded pictures, each as "codec WxH", by ffprobe.
QStringList probedPictures(const QString& path);

/// The frames of the ID3v2.4 tag that begins at a place of the bytes; empty if
/// none begins there.
QList<Id3Frame> id3Frames(const QByteArray& bytes, qsizetype place = 0);

/// The payloads of the frames of one id.
QList<QByteArray> framesOf(const QList<Id3Frame>& frames, const char* id);

/// The payload of a text frame: encoding 3 (UTF-8), then the text.
QByteArray utf8Frame(const char* text);

/// The chunks of a RIFF file by their names in capitals.
QMap<QByteArray, QByteArray> waveChunks(const QByteArray& bytes);

/// The values of an INFO list.
QMap<QByteArray, QByteArray> infoValues(const QByteArray& list);

/// A digest of the encoded audio, whatever tags stand around it.
QByteArray audioDigest(const QString& path);

QByteArray readAll(const QString& path);
