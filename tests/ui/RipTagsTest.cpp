// What the fields of the wizard become in the files of a rip.

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QImage>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class RipTags : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    /// To the Metadata step, with an image of two tracks and FLAC files as the choice.
    void prepare(WindowDriver& app)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {30, QStringLiteral("Beta")}};
        app.outputPath()->setText(folder.path());
        app.pickCue(writeImage(folder.path(), image, makeAudio(60, 1)));
        app.advanceTo(2);
    }

    /// The tags of a file below the output folder, sorted.
    QStringList tagsOf(const QString& name) const
    {
        const ToolResult read = runTool(QStringLiteral("metaflac"),
                                        {QStringLiteral("--export-tags-to=-"), folder.filePath(name)});
        EXPECT_TRUE(read.ok()) << read.errors.toStdString();
        QStringList tags = QString::fromUtf8(read.output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        tags.removeIf([](const QString& tag) { return tag.startsWith(QLatin1String("REPLAYGAIN_")); });
        tags.sort();
        return tags;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(RipTags, ArtistAndAlbumGoInCleanedAndTheRestAsItStands)
{
    WindowDriver app(2);
    prepare(app);
    app.artist()->setText(QStringLiteral("Ada - Live"));
    app.album()->setText(QStringLiteral("Blue: (Deluxe) Sky (2001)"));
    app.year()->setText(QStringLiteral("1999"));
    app.onPage<QSpinBox>(2, "formEdit", 0)->setValue(2);
    app.onPage<QSpinBox>(2, "formEdit", 1)->setValue(3);
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(folder.filePath(QStringLiteral("art.png"))));
    app.pickCover(folder.filePath(QStringLiteral("art.png")));
    app.advanceTo(3);
    EXPECT_FALSE(app.runRip().isEmpty());

    // The colon stays in the tag and goes from the folder's name.
    const QString file = QStringLiteral("Ada - Blue Sky/Disc2/02. Beta.flac");
    EXPECT_EQ(tagsOf(file), (QStringList{"ALBUM=Blue: Sky", "ARTIST=Ada", "DATE=1999", "DISCNUMBER=2",
                                         "DISCTOTAL=3", "TITLE=Beta", "TRACKNUMBER=2", "TRACKTOTAL=2"}));
    const QString cover = folder.filePath(QStringLiteral("exported"));
    EXPECT_TRUE(runTool(QStringLiteral("metaflac"),
                        {QStringLiteral("--export-picture-to=") + cover, folder.filePath(file)})
                    .ok());
    EXPECT_EQ(QImage(cover).size(), QSize(30, 20));
}

TEST_F(RipTags, EmptyFieldsAreUnknown)
{
    WindowDriver app(2);
    prepare(app);
    for (QLineEdit* field : {app.artist(), app.album(), app.year()})
        field->clear();
    app.advanceTo(3);
    EXPECT_FALSE(app.runRip().isEmpty());
    const QStringList tags = tagsOf(QStringLiteral("Unknown - Unknown/01. Alpha.flac"));
    EXPECT_TRUE(tags.contains(QStringLiteral("ARTIST=Unknown"))) << tags.join(u' ').toStdString();
    EXPECT_TRUE(tags.contains(QStringLiteral("ALBUM=Unknown")));
    EXPECT_EQ(tags.filter(QStringLiteral("DATE=")).size(), 0);
}

TEST_F(RipTags, TheNamingRuleOfTheSettingsNamesTheFiles)
{
    QSettings().setValue(QStringLiteral("output/namingRule"),
                         QStringLiteral("{artist} {year} {title} {track}"));
    WindowDriver app(2);
    prepare(app);
    app.advanceTo(3);
    EXPECT_FALSE(app.runRip().isEmpty());
    EXPECT_EQ(
        QDir(folder.filePath(QStringLiteral("Test Artist - Test Album"))).entryList(QDir::Files, QDir::Name),
        (QStringList{"Test Artist 1998 Alpha 01.flac", "Test Artist 1998 Beta 02.flac"}));
}
