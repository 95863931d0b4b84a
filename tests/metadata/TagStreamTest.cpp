#include "TaggedFile.h"
#include "metadata/TagStream.h"
#include "support/FileSizeLimit.h"

#include <QFile>
#include <QImage>
#include <QRandomGenerator>

#include <stdexcept>

namespace {

QByteArray randomBytes(int count, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(count, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

TagLib::ByteVector vectorOf(const QByteArray& bytes)
{
    return TagLib::ByteVector(bytes.constData(), static_cast<unsigned int>(bytes.size()));
}

// Too large for any padding that an encoder leaves.
QPixmap noisyCover()
{
    QImage picture(200, 200, QImage::Format_RGB32);
    QRandomGenerator random(3);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, random.generate());
    return QPixmap::fromImage(picture);
}

struct Insertion {
    int fileBytes;
    int dataBytes;
    int start;
    int replace;
};

class TagStreamTest : public ::testing::TestWithParam<Insertion> {
protected:
    QString write(const QByteArray& bytes) const
    {
        QFile target(folder.filePath(QStringLiteral("file")));
        EXPECT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(bytes);
        return target.fileName();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_P(TagStreamTest, TheDataStandsInThePlaceOfWhatItReplaces)
{
    const auto [fileBytes, dataBytes, start, replace] = GetParam();
    const QByteArray before = randomBytes(fileBytes, 1);
    const QByteArray data = randomBytes(dataBytes, 2);
    const QString path = write(before);
    {
        TagStream stream(QFile::encodeName(path).constData());
        stream.insert(vectorOf(data), static_cast<TagStream::Offset>(start), static_cast<TagStream::Size>(replace));
    }
    EXPECT_EQ(readAll(path), before.left(start) + data + before.mid(start + replace));
}

constexpr int mebibyte = 1024 * 1024;

INSTANTIATE_TEST_SUITE_P(Sizes, TagStreamTest,
                         ::testing::Values(Insertion{0, 10, 0, 0}, Insertion{100, 10, 0, 0},
                                           Insertion{100, 10, 100, 0}, Insertion{100, 10, 40, 20},
                                           Insertion{100, 300, 40, 20}, Insertion{100, 300, 40, 60},
                                           Insertion{100, 20, 40, 20},
                                           Insertion{3 * mebibyte + 5, 1000, 42, 38},
                                           Insertion{3 * mebibyte, 2 * mebibyte, 42, 0},
                                           Insertion{mebibyte + 42, 10, 42, 0},
                                           Insertion{2 * mebibyte, 10, 1000, 5000}));

TEST_F(TagStreamTest, WithoutRoomTheFileStaysAsItWas)
{
    const QByteArray before = randomBytes(3 * mebibyte, 1);
    const QString path = write(before);
    {
        TagStream stream(QFile::encodeName(path).constData());
        const FileSizeLimit full(3 * mebibyte + 500);
        EXPECT_THROW(stream.insert(vectorOf(randomBytes(1000, 2)), 42, 0), std::runtime_error);
    }
    EXPECT_EQ(readAll(path), before);
}

TEST_F(TaggedFileTest, TagsOfAFlacOrMp3WithoutRoomLeaveTheAudioWhole)
{
    for (const char* name : {"full.flac", "full.mp3"}) {
        const QString path = makeAudio(name);
        const QByteArray before = readAll(path);
        TagData tags = fullTags();
        tags.cover = noisyCover();
        {
            const FileSizeLimit full(static_cast<rlim_t>(before.size()) + 64);
            EXPECT_FALSE(writeTags(path, tags)) << name;
        }
        EXPECT_EQ(lastTagError, QStringLiteral("Failed to save tags: ") + path);
        EXPECT_EQ(readAll(path), before) << name;
    }
}
