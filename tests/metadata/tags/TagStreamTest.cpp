#include "metadata/tags/TagStream.h"
#include "TaggedFile.h"
#include "support/FileSizeLimit.h"

#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QtEndian>

#include <stdexcept>
#include <utility>

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
        stream.insert(vectorOf(data), static_cast<TagStream::Offset>(start),
                      static_cast<TagStream::Size>(replace));
    }
    EXPECT_EQ(readAll(path), before.left(start) + data + before.mid(start + replace));
}

constexpr int mebibyte = 1024 * 1024;

INSTANTIATE_TEST_SUITE_P(
    Sizes, TagStreamTest,
    ::testing::Values(Insertion{0, 10, 0, 0}, Insertion{100, 10, 0, 0}, Insertion{100, 10, 100, 0},
                      Insertion{100, 10, 40, 20}, Insertion{100, 300, 40, 20}, Insertion{100, 300, 40, 60},
                      Insertion{100, 20, 40, 20}, Insertion{3 * mebibyte + 5, 1000, 42, 38},
                      Insertion{3 * mebibyte, 2 * mebibyte, 42, 0}, Insertion{mebibyte + 42, 10, 42, 0},
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

// What is appended, or takes the place of the file's end, has nothing to move.
TEST_F(TagStreamTest, WithoutRoomAtTheEndTheFileStaysAsItWas)
{
    constexpr int fileBytes = 10'000;
    const QByteArray before = randomBytes(fileBytes, 1);
    for (const auto& [start, replace] :
         {std::pair{fileBytes, 0}, {fileBytes - 20, 20}, {fileBytes - 20, 500}}) {
        for (const int dataBytes : {600, 100'000}) {
            const int growth = start + dataBytes - fileBytes;
            for (const int room : {0, 1, growth - 1, growth}) {
                const QString path = write(before);
                {
                    TagStream stream(QFile::encodeName(path).constData());
                    const FileSizeLimit full(static_cast<quint64>(fileBytes + room));
                    const auto insert = [&, from = start, over = replace] {
                        stream.insert(vectorOf(randomBytes(dataBytes, 2)),
                                      static_cast<TagStream::Offset>(from),
                                      static_cast<TagStream::Size>(over));
                    };
                    if (room < growth)
                        EXPECT_THROW(insert(), std::runtime_error)
                            << start << ' ' << dataBytes << ' ' << room;
                    else
                        EXPECT_NO_THROW(insert());
                }
                EXPECT_TRUE(readAll(path)
                            == (room < growth ? before : before.left(start) + randomBytes(dataBytes, 2)))
                    << start << ' ' << dataBytes << ' ' << room;
            }
        }
    }
}

// A WAV takes its tags at the end, an M4A as well where its index stands last.
TEST_F(TaggedFileTest, TagsWithoutRoomLeaveTheFileAsItWas)
{
    for (const char* name : {"full.flac", "full.mp3", "full.wav", "full.m4a"}) {
        for (const quint64 room : {quint64{0}, quint64{64}, quint64{5000}}) {
            const QString path = makeAudio(name);
            const QByteArray before = readAll(path);
            TagData tags = fullTags();
            tags.cover = noisyCover();
            {
                const FileSizeLimit full(static_cast<quint64>(before.size()) + room);
                EXPECT_FALSE(writeTags(path, tags)) << name << ' ' << room;
            }
            EXPECT_EQ(lastTagError, QStringLiteral("Failed to save tags: ") + path);
            EXPECT_TRUE(readAll(path) == before) << name << ' ' << room;
        }
    }
}

TEST_F(TaggedFileTest, WhereOnlyTheFirstOfTwoTagsFitsTheAudioAndThatTagAreWhole)
{
    const QString path = makeAudio("half.wav");
    const QByteArray digest = audioDigest(path);
    const qint64 untagged = readAll(path).size();
    const QString whole = makeAudio("whole.wav");
    ASSERT_TRUE(writeTags(whole, fullTags()));
    const qint64 tagged = readAll(whole).size();
    {
        const FileSizeLimit full(static_cast<quint64>(tagged - 10));
        EXPECT_FALSE(writeTags(path, fullTags()));
    }
    const QByteArray half = readAll(path);
    EXPECT_GT(half.size(), untagged);
    EXPECT_EQ(qFromLittleEndian<quint32>(half.constData() + 4), static_cast<quint32>(half.size()) - 8);
    EXPECT_EQ(audioDigest(path), digest);
    EXPECT_EQ(probedTags(path)["artist"], QStringLiteral("The Artist"));
}
