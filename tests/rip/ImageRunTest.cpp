#include "rip/ImageRun.h"

#include "RunParts.h"
#include "TrackFiles.h"
#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

struct Case {
    OutputFormat format;
    int offset;
};

class ImageRunTest : public ::testing::Test {
protected:
    QString out() const { return folder.filePath(QStringLiteral("out")); }
    QString file(const char* name) const { return out() + QLatin1Char('/') + QLatin1String(name); }

    QString threeTracks(const QByteArray& audio)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("One")}, {40, QString()}, {100, QStringLiteral("Three")}};
        return writeImage(folder.path(), image, audio);
    }

    void rip(const QString& cue, OutputFormat format, const QString& target, const QPixmap& cover = {})
    {
        ASSERT_TRUE(run.loadImage(cue));
        ASSERT_TRUE(QDir().mkpath(target));
        run.order.outputFormat = format;
        run.order.outputFolder = target;
        run.order.cover = cover;
        ImageRun(run.order, run.writer, run.report).run();
    }

    QTemporaryDir folder;
    RunParts run;
    const RecordingReport& said = run.report;
};

class ImageRunBits : public ImageRunTest, public ::testing::WithParamInterface<Case> {};

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
    rip(threeTracks(audio), GetParam().format, out());
    const QString extension =
        GetParam().format == OutputFlac ? QStringLiteral(".flac") : QStringLiteral(".wav");
    const QStringList names{QStringLiteral("01. One"), QStringLiteral("02. Track 2"),
                            QStringLiteral("03. Three")};
    const QList<int> starts{0, 40, 100, 130};
    ASSERT_EQ(said.results.size(), 3);
    EXPECT_EQ(said.sectors.size(), 130);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(said.results[i].ok);
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

TEST_F(ImageRunTest, AMp3DecodesInFull)
{
    rip(threeTracks(makeAudio(130, 8)), OutputMp3, out());
    const QString raw = folder.filePath(QStringLiteral("raw.wav"));
    ASSERT_TRUE(runTool(QStringLiteral("lame"),
                        {QStringLiteral("--decode"), QStringLiteral("--quiet"), file("03. Three.mp3"), raw})
                    .ok());
    constexpr qsizetype wavHeader = 44;
    EXPECT_EQ(contentOf(raw).size() - wavHeader, 30 * RAW_SECTOR_BYTES) << "encoder delay and padding cut";
}

TEST_F(ImageRunTest, SignalsTellTheRunInOrder)
{
    rip(threeTracks(makeAudio(130, 3)), OutputWav, out());
    EXPECT_EQ(said.started,
              (QStringList{QStringLiteral("0/3 Cover art: not found"), QStringLiteral("1/3 One"),
                           QStringLiteral("2/3 Track 2"), QStringLiteral("3/3 Three")}));
    EXPECT_EQ(said.results[1].trackNumber, 2);
    EXPECT_EQ(said.results[1].title, QStringLiteral("Track 2"));
    EXPECT_EQ(said.results[1].errorSectors, 0U);
    EXPECT_EQ(said.results[1].suspectSectors, 0U);
    EXPECT_TRUE(said.results[1].frameWindow.isEmpty());
    for (qsizetype i = 0; i < said.sectors.size(); ++i) {
        EXPECT_EQ(said.sectors[i].lba, static_cast<quint32>(i));
        EXPECT_TRUE(said.sectors[i].clean);
        EXPECT_EQ(said.sectors[i].speed, 0U);
    }
}

TEST_F(ImageRunTest, AWaveImageIsReadBehindItsHeader)
{
    const QByteArray audio = makeAudio(10, 4);
    ImageDescription image;
    image.imageName = QStringLiteral("disc.wav");
    image.imageType = QStringLiteral("WAVE");
    image.tracks = {{0, QStringLiteral("One")}};
    rip(writeImage(folder.path(), image, wrapInWave(audio)), OutputFlac, out());
    EXPECT_EQ(decodedAudio(file("01. One.flac"), folder.filePath(QStringLiteral("raw"))), audio);
}

TEST_F(ImageRunTest, ALastTrackBehindTheFileIsSilenceOfFullLength)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}, {50, QStringLiteral("Two")}};
    rip(writeImage(folder.path(), image, makeAudio(20, 4)), OutputFlac, out());
    ASSERT_EQ(said.results.size(), 2);
    EXPECT_EQ(said.results[0].errorSectors, 30U) << "sectors 20 to 49 lie behind the file";
    EXPECT_EQ(said.results[1].errorSectors, 20U);
    EXPECT_EQ(decodedAudio(file("02. Two.flac"), folder.filePath(QStringLiteral("raw"))),
              QByteArray(20 * RAW_SECTOR_BYTES, '\0'));
}

TEST_F(ImageRunTest, TracksWithoutSectorsYieldNoFile)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")},
                    {0, QStringLiteral("Two")},
                    {5, QStringLiteral("Three")},
                    {2, QStringLiteral("Four")}};
    rip(writeImage(folder.path(), image, makeAudio(10, 4)), OutputWav, out());
    ASSERT_EQ(said.results.size(), 4);
    for (const int empty : {0, 2}) {
        EXPECT_FALSE(said.results[empty].ok);
        EXPECT_EQ(said.results[empty].errorSectors, noSamplesRead);
    }
    EXPECT_EQ(QDir(out()).entryList(QDir::Files),
              (QStringList{QStringLiteral("02. Two.wav"), QStringLiteral("04. Four.wav")}));
}

TEST_F(ImageRunTest, CoverBesideTheImageIsCopiedAndEmbedded)
{
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString cue = threeTracks(makeAudio(130, 3));
    ASSERT_TRUE(picture.save(folder.filePath(QStringLiteral("cover.jpg"))));
    rip(cue, OutputFlac, out());
    EXPECT_EQ(said.started[0], QStringLiteral("0/3 Cover art: not found")) << "said also when one was found";
    EXPECT_EQ(contentOf(file("cover.jpg")), contentOf(folder.filePath(QStringLiteral("cover.jpg"))));
    const ToolResult listing =
        runTool(QStringLiteral("metaflac"),
                {QStringLiteral("--list"), QStringLiteral("--block-type=PICTURE"), file("01. One.flac")});
    EXPECT_TRUE(listing.output.contains("MIME type: image/jpeg")) << listing.output.toStdString();
}

TEST_F(ImageRunTest, ACoverInHandWinsOverTheOneBesideTheImage)
{
    QImage beside(8, 8, QImage::Format_RGB32);
    beside.fill(Qt::red);
    const QString cue = threeTracks(makeAudio(130, 3));
    ASSERT_TRUE(beside.save(folder.filePath(QStringLiteral("cover.jpg"))));
    QPixmap inHand(20, 10);
    inHand.fill(Qt::blue);
    rip(cue, OutputWav, out(), inHand);
    EXPECT_EQ(said.started[0], QStringLiteral("0/3 Cover art: OK"));
    EXPECT_EQ(QImage(file("cover.jpg")).size(), QSize(20, 10));
}

TEST_F(ImageRunTest, ACoverThatIsNoPictureIsPassedOver)
{
    const QString cue = threeTracks(makeAudio(130, 3));
    writeFile(folder.path(), QStringLiteral("cover.jpg"), "not a picture at all");
    rip(cue, OutputFlac, out());
    EXPECT_FALSE(QFileInfo::exists(file("cover.jpg")));
    EXPECT_TRUE(said.results[0].ok);
}

TEST_F(ImageRunTest, ARipIntoTheImagesOwnFolderKeepsItsCover)
{
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::green);
    const QString cue = threeTracks(makeAudio(130, 3));
    const QString coverPath = folder.filePath(QStringLiteral("cover.jpg"));
    ASSERT_TRUE(picture.save(coverPath));
    const QByteArray before = contentOf(coverPath);
    rip(cue, OutputWav, folder.path());
    EXPECT_EQ(contentOf(coverPath), before);
}

TEST_F(ImageRunTest, TagsReachTheFile)
{
    rip(threeTracks(makeAudio(130, 3)), OutputFlac, out());
    const ToolResult tags =
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), file("02. Track 2.flac")});
    ASSERT_TRUE(tags.ok());
    const QList<QByteArray> lines = tags.output.trimmed().split('\n');
    for (const char* expected : {"TITLE=Track 2", "ARTIST=Test Artist", "ALBUM=Test Album", "DATE=1998",
                                 "TRACKNUMBER=2", "TRACKTOTAL=3", "DISCNUMBER=1", "DISCTOTAL=2"})
        EXPECT_TRUE(lines.contains(expected)) << expected << " in " << tags.output.toStdString();
}

TEST_F(ImageRunTest, EachTrackEndsBeforeTheNextBegins)
{
    rip(threeTracks(makeAudio(130, 3)), OutputWav, out());
    EXPECT_EQ(said.said, (QStringList{QStringLiteral("begins 0/3 Cover art: not found"),
                                      QStringLiteral("begins 1/3 One"), QStringLiteral("ends 1"),
                                      QStringLiteral("begins 2/3 Track 2"), QStringLiteral("ends 2"),
                                      QStringLiteral("begins 3/3 Three"), QStringLiteral("ends 3")}));
}

TEST_F(ImageRunTest, AStopInATrackEndsTheRunWithoutIt)
{
    run.report.onSector = [this](const SectorResult& record) { run.report.stop = record.lba == 45; };
    rip(threeTracks(makeAudio(130, 3)), OutputWav, out());
    EXPECT_EQ(said.sectors.size(), 46);
    EXPECT_EQ(said.results.size(), 1);
    EXPECT_EQ(said.started.size(), 3) << "the cover and two tracks";
    EXPECT_EQ(QDir(out()).entryList(QDir::Files), QStringList{QStringLiteral("01. One.wav")});
}

TEST_F(ImageRunTest, WantOfMemoryFailsItsTrackAlone)
{
    run.report.onSector = [](const SectorResult& record) {
        if (record.lba == 50)
            throw std::bad_alloc();
    };
    rip(threeTracks(makeAudio(130, 3)), OutputWav, out());
    ASSERT_EQ(said.results.size(), 3);
    EXPECT_FALSE(said.results[1].ok);
    EXPECT_EQ(said.results[1].errorSectors, noSamplesRead);
    EXPECT_TRUE(said.results[0].ok && said.results[2].ok);
}

// 125 clean sectors, and five that lie behind the file.
TEST_F(ImageRunTest, WhatCouldNotBeReadIsCounted)
{
    const QString cue = threeTracks(makeAudio(130, 3));
    ASSERT_TRUE(run.loadImage(cue));
    QFile::resize(folder.filePath(QStringLiteral("disc.bin")), 125 * RAW_SECTOR_BYTES);
    run.order.outputFolder = folder.path();
    ImageRun(run.order, run.writer, run.report).run();
    ASSERT_EQ(said.results.size(), 3);
    EXPECT_EQ(said.results[1].errorSectors, 0U);
    EXPECT_EQ(said.results[2].errorSectors, 5U);
    EXPECT_EQ(said.results[2].suspectSectors, 0U) << "an image is read once";
}
