// What is said of tags that could not be written.

#include "base/FreeSpace.h"

#include "RunParts.h"
#include "TrackFiles.h"
#include "support/FileSizeLimit.h"
#include "support/Language.h"
#include "support/Tool.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class TagRoom : public ::testing::Test {
protected:
    TagRoom() { speak(2); }
    ~TagRoom() override { pretendFreeSpace(std::nullopt); }

    void write(OutputFormat format, const QPixmap& cover = {})
    {
        run.order.outputFolder = folder.path();
        run.order.outputFormat = format;
        run.order.cover = cover;
        if (!cover.isNull())
            run.writer.saveCover();
        const TrackLabel label{folder.filePath(QStringLiteral("01. One")), QStringLiteral("One"), 1, 1,
                               cover};
        EXPECT_TRUE(run.writer.write(QList<int>(audio), AudioFormat(), label))
            << "the audio is saved all the same";
    }

    QString artistOf(const QString& name) const
    {
        const ToolResult probe =
            runTool(QStringLiteral("ffprobe"),
                    {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                     QStringLiteral("format_tags=artist"), QStringLiteral("-of"),
                     QStringLiteral("default=nk=1:nw=1"), folder.filePath(name)});
        return QString::fromUtf8(probe.output).trimmed();
    }

    QTemporaryDir folder;
    RunParts run;
    const QList<int> audio = QList<int>(60 * SECTOR_VALUES, 7 << 16);
};

const QString notWritten = QStringLiteral("  ⚠ The tags could not be written: 01. One.flac");

} // namespace

TEST_F(TagRoom, AFileSystemThatKnowsOfNoFreeBytesGetsItsTags)
{
    pretendFreeSpace(0);
    write(OutputFlac);
    EXPECT_EQ(artistOf(QStringLiteral("01. One.flac")), QStringLiteral("Test Artist"));
    EXPECT_TRUE(run.report.said.isEmpty());
}

// The texts of the tags count as 256 KiB.
TEST_F(TagRoom, WhereTheTagsDoNotFitTheyAreLeftOutWithALine)
{
    pretendFreeSpace(256 * 1024);
    write(OutputFlac);
    EXPECT_EQ(artistOf(QStringLiteral("01. One.flac")), QString());
    EXPECT_EQ(run.report.logLines, QStringList{notWritten});
}

TEST_F(TagRoom, WhereTheyJustFitTheyAreWritten)
{
    pretendFreeSpace(256 * 1024 + 1);
    write(OutputFlac);
    EXPECT_EQ(artistOf(QStringLiteral("01. One.flac")), QStringLiteral("Test Artist"));
    EXPECT_TRUE(run.report.said.isEmpty());
}

// Two bytes for each point of the cover.
TEST_F(TagRoom, TheCoverNeedsItsRoomToo)
{
    QPixmap cover(100, 50);
    cover.fill(Qt::red);
    pretendFreeSpace(256 * 1024 + 100 * 50 * 2);
    write(OutputFlac, cover);
    EXPECT_EQ(run.report.logLines, QStringList{notWritten});
}

TEST_F(TagRoom, TheLineSpeaksTheLanguageInForce)
{
    speak(1);
    pretendFreeSpace(1);
    write(OutputFlac);
    EXPECT_EQ(run.report.logLines,
              QStringList{QStringLiteral("  ⚠ タグを書き込めませんでした: 01. One.flac")});
    speak(2);
}

TEST_F(TagRoom, ADiskThatFillsWithoutAWordOfItIsSaidAsWell)
{
    constexpr quint64 audioBytes = 44 + 60 * 2352;
    pretendFreeSpace(0);
    {
        const FileSizeLimit full(audioBytes);
        write(OutputWav);
    }
    EXPECT_EQ(run.report.logLines,
              QStringList{QStringLiteral("  ⚠ The tags could not be written: 01. One.wav")});
    const QByteArray wave = contentOf(folder.filePath(QStringLiteral("01. One.wav")));
    EXPECT_EQ(wave.size(), static_cast<qsizetype>(audioBytes));
    EXPECT_TRUE(wave.mid(44) == QByteArray("\7\0", 2).repeated(60 * SECTOR_VALUES));
}

TEST_F(TagRoom, ACoverThatFlacCannotHoldIsLeftOutWithALine)
{
    constexpr int edge = 5000;
    QImage noise(edge, edge, QImage::Format_RGB32);
    QRandomGenerator random(5);
    for (int y = 0; y < edge; ++y)
        random.fillRange(reinterpret_cast<quint32*>(noise.scanLine(y)), edge);
    write(OutputFlac, QPixmap::fromImage(noise));
    EXPECT_GT(QFileInfo(folder.filePath(QStringLiteral("cover.jpg"))).size(), 0xFFFFFF);
    EXPECT_EQ(run.report.logLines,
              QStringList{QStringLiteral("  ⚠ The cover is too large to be embedded: 01. One.flac")});
    const QString track = folder.filePath(QStringLiteral("01. One.flac"));
    EXPECT_TRUE(runTool(QStringLiteral("flac"), {QStringLiteral("-t"), QStringLiteral("-s"), track}).ok());
    EXPECT_EQ(artistOf(QStringLiteral("01. One.flac")), QStringLiteral("Test Artist"));
}

// A JPEG has 65,500 points in a row.
TEST_F(TagRoom, ACoverThatNoJpegCanHoldLeavesNoFileOfItsOwn)
{
    QPixmap cover(65501, 2);
    cover.fill(Qt::red);
    write(OutputFlac, cover);
    EXPECT_FALSE(QFileInfo::exists(folder.filePath(QStringLiteral("cover.jpg"))));
    EXPECT_EQ(run.report.logLines,
              QStringList{QStringLiteral("  ⚠ The cover is too large to be embedded: 01. One.flac")});
    EXPECT_EQ(artistOf(QStringLiteral("01. One.flac")), QStringLiteral("Test Artist"));
}
