#include "metadata/tags/TaggedFile.h"

#include "base/ByteOrder.h"
#include "support/Tool.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject probe(const QString& path)
{
    const ToolResult tool =
        runTool("ffprobe", {"-v", "error", "-show_format", "-show_streams", "-print_format", "json", path});
    EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
    return QJsonDocument::fromJson(tool.output).object();
}

// Seven bits a byte, the top bit clear.
qsizetype synchSafe(const QByteArray& bytes, qsizetype place)
{
    qsizetype value = 0;
    for (qsizetype i = 0; i < 4; ++i)
        value = (value << 7) | static_cast<unsigned char>(bytes[place + i]);
    return value;
}

} // namespace

QString TaggedFileTest::makeAudio(const char* name, const QStringList& options) const
{
    const QString path = file(name);
    QStringList arguments{"-v",
                          "error",
                          "-y",
                          "-f",
                          "lavfi",
                          "-i",
                          "sine=frequency=440:duration=0.3",
                          "-map_metadata",
                          "-1",
                          "-fflags",
                          "+bitexact",
                          "-flags:a",
                          "+bitexact"};
    if (path.endsWith(".mp3", Qt::CaseInsensitive))
        arguments << "-id3v2_version"
                  << "0"
                  << "-f"
                  << "mp3";
    arguments << options << path;
    const ToolResult tool = runTool("ffmpeg", arguments);
    EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
    return path;
}

TagData fullTags()
{
    TagData tags;
    tags.title = QString::fromUtf8("Größe 曲 \xF0\x9F\x8E\xB5");
    tags.artist = QStringLiteral("The Artist");
    tags.album = QStringLiteral("The Album");
    tags.year = QStringLiteral("1997-05-21");
    tags.label = QStringLiteral("The Label");
    tags.trackNumber = 3;
    tags.trackTotal = 12;
    tags.discNumber = 1;
    tags.discTotal = 2;
    tags.cover = redCover();
    return tags;
}

QPixmap redCover()
{
    QPixmap cover(40, 30);
    cover.fill(Qt::red);
    return cover;
}

QMap<QString, QString> probedTags(const QString& path)
{
    QMap<QString, QString> tags;
    const QJsonObject found = probe(path)["format"].toObject()["tags"].toObject();
    for (auto it = found.begin(); it != found.end(); ++it)
        tags.insert(it.key().toLower(), it.value().toString());
    return tags;
}

QStringList probedPictures(const QString& path)
{
    QStringList pictures;
    for (const QJsonValue& stream : probe(path)["streams"].toArray()) {
        if (stream["codec_type"].toString() == "video") {
            pictures << QStringLiteral("%1 %2x%3")
                            .arg(stream["codec_name"].toString())
                            .arg(stream["width"].toInt())
                            .arg(stream["height"].toInt());
        }
    }
    return pictures;
}

QList<Id3Frame> id3Frames(const QByteArray& bytes, qsizetype place)
{
    QList<Id3Frame> frames;
    if (bytes.mid(place, 4) != QByteArray("ID3\x04"))
        return frames;
    const qsizetype end = place + 10 + synchSafe(bytes, place + 6);
    for (qsizetype at = place + 10; at + 10 <= end && bytes[at] != '\0';) {
        const qsizetype size = synchSafe(bytes, at + 4);
        frames.append({bytes.mid(at, 4), bytes.mid(at + 10, size)});
        at += 10 + size;
    }
    return frames;
}

QList<QByteArray> framesOf(const QList<Id3Frame>& frames, const char* id)
{
    QList<QByteArray> payloads;
    for (const Id3Frame& frame : frames) {
        if (frame.id == id)
            payloads.append(frame.payload);
    }
    return payloads;
}

QByteArray utf8Frame(const char* text)
{
    return QByteArray("\x03") + text;
}

QMap<QByteArray, QByteArray> waveChunks(const QByteArray& bytes)
{
    QMap<QByteArray, QByteArray> found;
    EXPECT_EQ(byteorder::readLittle<quint32>(bytes.constData() + 4) + 8, bytes.size());
    for (qsizetype at = 12; at + 8 <= bytes.size();) {
        const auto size = qsizetype{byteorder::readLittle<quint32>(bytes.constData() + at + 4)};
        found.insert(bytes.mid(at, 4).toUpper(), bytes.mid(at + 8, size));
        at += 8 + size + size % 2;
    }
    return found;
}

QMap<QByteArray, QByteArray> infoValues(const QByteArray& list)
{
    QMap<QByteArray, QByteArray> found;
    EXPECT_TRUE(list.isEmpty() || list.startsWith("INFO"));
    for (qsizetype at = 4; at + 8 <= list.size();) {
        const auto size = qsizetype{byteorder::readLittle<quint32>(list.constData() + at + 4)};
        found.insert(list.mid(at, 4), QByteArray(list.mid(at + 8, size).constData())); // up to the zero
        at += 8 + size + size % 2;
    }
    return found;
}

QByteArray audioDigest(const QString& path)
{
    const ToolResult tool =
        runTool("ffmpeg", {"-v", "error", "-i", path, "-map", "0:a", "-c", "copy", "-f", "md5", "-"});
    EXPECT_TRUE(tool.output.startsWith("MD5=")) << tool.errors.toStdString();
    return tool.output;
}

QByteArray readAll(const QString& path)
{
    QFile opened(path);
    EXPECT_TRUE(opened.open(QIODevice::ReadOnly)) << path.toStdString();
    return opened.readAll();
}
