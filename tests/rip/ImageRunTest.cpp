#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "support/Tool.h"

#include <QDir>
#include <QImage>

#include <cstdlib>

namespace {

struct Case {
    OutputFormat format;
    int offset;
};

class ImageRun : public ::testing::Test {
protected:
    QString out() const { return folder.filePath(QStringLiteral("out")); }
    QString file(const char* name) const { return out() + QLatin1Char('/') + QLatin1String(name); }

    QString threeTracks(const QByteArray& audio)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("One")}, {40, QString()}, {100, QStringLiteral("Three")}};
        return writeImage(folder.path(), image, audio);
    }

    QTemporaryDir folder;
    RunRecorder run;
};

class ImageRunBits : public ImageRun, public ::testing::WithParamInterface<Case> {};

/// What a track must hold: its bytes moved by whole 16-bit values, silence in the gap.
QByteArray moved(const QByteArray& track, int offset)
{
    const qsizetype bytes = 2 * std::abs(qsizetype{offset});
    if (bytes >= track.size())
        return track;
    return offset > 0 ? track.mid(bytes) + QByteArray(bytes, '\0')
                      : QByteArray(bytes, '\0') + track.chopped(bytes);
}

QByteArray decodedAudio(const QString& path, const QString& rawPath)
{
    if (path.endsWith(QLatin1String(".flac"))) {
        EXPECT_TRUE(runTool(QStringLiteral("flac"), {QStringLiteral("-t"), QStringLiteral("-s"), path}).ok());
        EXPECT_TRUE(runTool(QStringLiteral("flac"),
                            {QStringLiteral("-d"), QStringLiteral("-s"), QStringLiteral("-f"),
                             QStringLiteral("--force-raw-format"), QStringLiteral("--endian=little"),
                             QStringLiteral("--sign=signed"), QStringLiteral("-o"), rawPath, path})
                        .ok());
    } else {
        EXPECT_TRUE(
            runTool(QStringLiteral("sox"), {path, QStringLiteral("-t"), QStringLiteral("raw"), rawPath})
                .ok());
    }
    return contentOf(rawPath);
}

} // namespace

TEST_P(ImageRunBits, DecodedTracksEqualTheImage)
{
    const QByteArray audio = makeAudio(130, 21);
    run.drive.setReadOffset(GetParam().offset);
    run.rip(threeTracks(audio), GetParam().format, out());
    const QString extension =
        GetParam().format == OutputFlac ? QStringLiteral(".flac") : QStringLiteral(".wav");
    const QStringList names{QStringLiteral("01. One"), QStringLiteral("02. Track 2"),
                            QStringLiteral("03. Three")};
    const QList<int> starts{0, 40, 100, 130};
    ASSERT_EQ(run.results.size(), 3);
    EXPECT_EQ(run.sectors.size(), 130);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(run.results[i].ok);
        const QByteArray track = audio.mid(qsizetype{starts[i]} * RAW_SECTOR_BYTES,
                                           qsizetype{starts[i + 1] - starts[i]} * RAW_SECTOR_BYTES);
        const QByteArray decoded = decodedAudio(out() + QLatin1Char('/') + names[i] + extension,
                                                folder.filePath(QStringLiteral("raw")));
        ASSERT_EQ(decoded.size(), track.size());
        EXPECT_TRUE(decoded == moved(track, GetParam().offset)) << names[i].toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Offsets, ImageRunBits,
                         ::testing::Values(Case{OutputFlac, 0}, Case{OutputFlac, 6}, Case{OutputFlac, -6},
                                           Case{OutputFlac, 30}, Case{OutputFlac, -30},
                                           Case{OutputFlac, 50000}, Case{OutputFlac, -90000},
                                           Case{OutputWav, 0}, Case{OutputWav, 6}, Case{OutputWav, -6},
                                           Case{OutputWav, 30}, Case{OutputWav, -30}, Case{OutputWav, 50000},
                                           Case{OutputWav, 90000}));

TEST_F(ImageRun, AMp3DecodesInFull)
{
    run.rip(threeTracks(makeAudio(130, 8)), OutputMp3, out());
    const QString raw = folder.filePath(QStringLiteral("raw.wav"));
    ASSERT_TRUE(runTool(QStringLiteral("lame"),
                        {QStringLiteral("--decode"), QStringLiteral("--quiet"), file("03. Three.mp3"), raw})
                    .ok());
    constexpr qsizetype wavHeader = 44;
    EXPECT_EQ(contentOf(raw).size() - wavHeader, 30 * RAW_SECTOR_BYTES) << "encoder delay and padding cut";
}

TEST_F(ImageRun, SignalsTellTheRunInOrder)
{
    run.rip(threeTracks(makeAudio(130, 3)), OutputWav, out());
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("0/3 Cover art: not found"), QStringLiteral("1/3 One"),
                                        QStringLiteral("2/3 Track 2"), QStringLiteral("3/3 Three")}));
    EXPECT_EQ(run.results[1].trackNumber, 2);
    EXPECT_EQ(run.results[1].title, QStringLiteral("Track 2"));
    EXPECT_EQ(run.results[1].errorSectors, 0U);
    EXPECT_EQ(run.results[1].suspectSectors, 0U);
    EXPECT_TRUE(run.results[1].frameWindow.isEmpty());
    for (qsizetype i = 0; i < run.sectors.size(); ++i) {
        EXPECT_EQ(run.sectors[i].lba, static_cast<quint32>(i));
        EXPECT_TRUE(run.sectors[i].clean);
        EXPECT_EQ(run.sectors[i].speed, 0U);
    }
}

TEST_F(ImageRun, AWaveImageIsReadBehindItsHeader)
{
    const QByteArray audio = makeAudio(10, 4);
    ImageDescription image;
    image.imageName = QStringLiteral("disc.wav");
    image.imageType = QStringLiteral("WAVE");
    image.tracks = {{0, QStringLiteral("One")}};
    run.rip(writeImage(folder.path(), image, wrapInWave(audio)), OutputFlac, out());
    EXPECT_EQ(decodedAudio(file("01. One.flac"), folder.filePath(QStringLiteral("raw"))), audio);
}

TEST_F(ImageRun, ALastTrackBehindTheFileIsSilenceOfFullLength)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}, {50, QStringLiteral("Two")}};
    run.rip(writeImage(folder.path(), image, makeAudio(20, 4)), OutputFlac, out());
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_EQ(run.results[0].errorSectors, 30U) << "sectors 20 to 49 lie behind the file";
    EXPECT_EQ(run.results[1].errorSectors, 20U);
    EXPECT_EQ(decodedAudio(file("02. Two.flac"), folder.filePath(QStringLiteral("raw"))),
              QByteArray(20 * RAW_SECTOR_BYTES, '\0'));
}

TEST_F(ImageRun, TracksWithoutSectorsYieldNoFile)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")},
                    {0, QStringLiteral("Two")},
                    {5, QStringLiteral("Three")},
                    {2, QStringLiteral("Four")}};
    run.rip(writeImage(folder.path(), image, makeAudio(10, 4)), OutputWav, out());
    ASSERT_EQ(run.results.size(), 4);
    for (const int empty : {0, 2}) {
        EXPECT_FALSE(run.results[empty].ok);
        EXPECT_EQ(run.results[empty].errorSectors, noSamplesRead);
    }
    EXPECT_EQ(QDir(out()).entryList(QDir::Files),
              (QStringList{QStringLiteral("02. Two.wav"), QStringLiteral("04. Four.wav")}));
}

TEST_F(ImageRun, CoverBesideTheImageIsCopiedAndEmbedded)
{
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString cue = threeTracks(makeAudio(130, 3));
    ASSERT_TRUE(picture.save(folder.filePath(QStringLiteral("cover.jpg"))));
    run.rip(cue, OutputFlac, out());
    EXPECT_EQ(run.started[0], QStringLiteral("0/3 Cover art: not found")) << "said also when one was found";
    EXPECT_EQ(contentOf(file("cover.jpg")), contentOf(folder.filePath(QStringLiteral("cover.jpg"))));
    const ToolResult listing =
        runTool(QStringLiteral("metaflac"),
                {QStringLiteral("--list"), QStringLiteral("--block-type=PICTURE"), file("01. One.flac")});
    EXPECT_TRUE(listing.output.contains("MIME type: image/jpeg")) << listing.output.toStdString();
}

TEST_F(ImageRun, ACoverInHandWinsOverTheOneBesideTheImage)
{
    QImage beside(8, 8, QImage::Format_RGB32);
    beside.fill(Qt::red);
    const QString cue = threeTracks(makeAudio(130, 3));
    ASSERT_TRUE(beside.save(folder.filePath(QStringLiteral("cover.jpg"))));
    QPixmap inHand(20, 10);
    inHand.fill(Qt::blue);
    run.rip(cue, OutputWav, out(), inHand);
    EXPECT_EQ(run.started[0], QStringLiteral("0/3 Cover art: OK"));
    EXPECT_EQ(QImage(file("cover.jpg")).size(), QSize(20, 10));
}

TEST_F(ImageRun, ACoverThatIsNoPictureIsPassedOver)
{
    const QString cue = threeTracks(makeAudio(130, 3));
    writeFile(folder.path(), QStringLiteral("cover.jpg"), "not a picture at all");
    run.rip(cue, OutputFlac, out());
    EXPECT_FALSE(QFileInfo::exists(file("cover.jpg")));
    EXPECT_TRUE(run.results[0].ok);
}

TEST_F(ImageRun, ARipIntoTheImagesOwnFolderKeepsItsCover)
{
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::green);
    const QString cue = threeTracks(makeAudio(130, 3));
    const QString coverPath = folder.filePath(QStringLiteral("cover.jpg"));
    ASSERT_TRUE(picture.save(coverPath));
    const QByteArray before = contentOf(coverPath);
    run.rip(cue, OutputWav, folder.path());
    EXPECT_EQ(contentOf(coverPath), before);
}

TEST_F(ImageRun, TagsReachTheFile)
{
    run.rip(threeTracks(makeAudio(130, 3)), OutputFlac, out());
    const ToolResult tags =
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), file("02. Track 2.flac")});
    ASSERT_TRUE(tags.ok());
    const QList<QByteArray> lines = tags.output.trimmed().split('\n');
    for (const char* expected : {"TITLE=Track 2", "ARTIST=Test Artist", "ALBUM=Test Album", "DATE=1998",
                                 "TRACKNUMBER=2", "TRACKTOTAL=3", "DISCNUMBER=1", "DISCTOTAL=2"})
        EXPECT_TRUE(lines.contains(expected)) << expected << " in " << tags.output.toStdString();
}
