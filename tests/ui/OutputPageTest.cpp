#include "ui/WindowDriver.h"

#include "base/Settings.h"

#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QRadioButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class OutputPage : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    QString preview(WindowDriver& app) { return app.onPage<QLabel>(1, "previewLabel")->text(); }
    void choose(WindowDriver& app, int format)
    {
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", format)->click();
    }
};

} // namespace

TEST_F(OutputPage, TextsInEnglish)
{
    WindowDriver app(2);
    EXPECT_EQ(app.onPage<QLabel>(1, "stepHeading")->text(),
              QStringLiteral("Choose the output folder and format"));
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 0)->title(), QStringLiteral("Output Folder"));
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 1)->title(), QStringLiteral("Output Format"));
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 2)->title(), QStringLiteral("Folder Preview"));
    EXPECT_EQ(app.outputPath()->placeholderText(), QStringLiteral("Select folder..."));
    EXPECT_EQ(app.onPage<QPushButton>(1, "browseBtn")->text(), QStringLiteral("Browse..."));
    EXPECT_EQ(app.onPage<QRadioButton>(1, "fmtRadio", 0)->text(),
              QStringLiteral("FLAC  (lossless · tags · cover art)"));
    EXPECT_EQ(app.onPage<QRadioButton>(1, "fmtRadio", 1)->text(),
              QStringLiteral("WAV   (uncompressed · tags · cover art)"));
    EXPECT_EQ(app.onPage<QRadioButton>(1, "fmtRadio", 2)->text(),
              QStringLiteral("MP3   (lossy · tags · cover art)"));
    EXPECT_EQ(preview(app),
              QStringLiteral("Output folder\\\n  └─ Artist - Album\\\n        ├─ 01. Title.flac\n"
                             "        ├─ 02. Title.flac\n        └─ cover.jpg\n\n"
                             "* Multi-disc sets are split into Disc1\\ Disc2\\ …"));
}

TEST_F(OutputPage, TextsInJapanese)
{
    WindowDriver app(1);
    EXPECT_EQ(app.onPage<QLabel>(1, "stepHeading")->text(),
              QStringLiteral("出力先とフォーマットを設定してください"));
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 0)->title(), QStringLiteral("出力先フォルダ"));
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 1)->title(), QStringLiteral("出力フォーマット"));
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 2)->title(), QStringLiteral("フォルダ構成プレビュー"));
    EXPECT_EQ(app.outputPath()->placeholderText(), QStringLiteral("フォルダを選択..."));
    EXPECT_EQ(app.onPage<QPushButton>(1, "browseBtn")->text(), QStringLiteral("参照..."));
    EXPECT_EQ(app.onPage<QRadioButton>(1, "fmtRadio", 0)->text(),
              QStringLiteral("FLAC  （可逆圧縮・タグ・アルバムアート埋め込み）"));
    EXPECT_EQ(preview(app),
              QStringLiteral("出力先\\\n  └─ アーティスト名 - アルバム名\\\n        ├─ 01. 曲名.flac\n"
                             "        ├─ 02. 曲名.flac\n        └─ cover.jpg\n\n"
                             "※ 複数枚組は Disc1\\ Disc2\\ … に分かれます"));
}

TEST_F(OutputPage, ARadioMovesTheHiddenComboAndThePreview)
{
    WindowDriver app;
    auto* combo = app.pageAt(1)->findChild<QComboBox*>();
    ASSERT_NE(combo, nullptr);
    EXPECT_TRUE(app.onPage<QRadioButton>(1, "fmtRadio", 0)->isChecked());
    EXPECT_EQ(combo->currentText(), QStringLiteral("flac"));
    choose(app, 2);
    EXPECT_FALSE(combo->isVisible());
    EXPECT_EQ(combo->currentText(), QStringLiteral("mp3"));
    EXPECT_TRUE(preview(app).contains(QStringLiteral("01. Title.mp3")));
    choose(app, 1);
    EXPECT_EQ(combo->currentText(), QStringLiteral("wav"));
    EXPECT_TRUE(preview(app).contains(QStringLiteral("02. Title.wav")));
}

TEST_F(OutputPage, ThePreviewFollowsTheNamingRule)
{
    QSettings().setValue(QLatin1String(settings::namingRule),
                         QStringLiteral("{artist}-{album}-{year} {title} {title} {disc}"));
    WindowDriver app;
    const QString name = QStringLiteral("Artist-Album-Year Title Title {disc}.flac");
    EXPECT_EQ(preview(app).count(name), 2);
    WindowDriver japanese(1);
    EXPECT_EQ(preview(japanese).count(QStringLiteral("アーティスト名-アルバム名-年 曲名 曲名 {disc}.flac")),
              2);
}

TEST_F(OutputPage, ABlankRuleIsTheDefaultAndStaysInTheStore)
{
    QSettings().setValue(QLatin1String(settings::namingRule), QStringLiteral("   "));
    WindowDriver app;
    EXPECT_TRUE(preview(app).contains(QStringLiteral("├─ 01. Title.flac\n")));
    EXPECT_EQ(QSettings().value(QLatin1String(settings::namingRule)).toString(), QStringLiteral("   "));
}

TEST_F(OutputPage, BlanksAroundARuleStay)
{
    QSettings().setValue(QLatin1String(settings::namingRule), QStringLiteral(" {track} "));
    WindowDriver app;
    EXPECT_TRUE(preview(app).contains(QStringLiteral("├─  01 .flac\n")));
}

TEST_F(OutputPage, StartsInTheDefaultFolderOrTheMusicFolder)
{
    EXPECT_EQ(WindowDriver().outputPath()->text(),
              QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    QSettings().setValue(QLatin1String(settings::defaultDir), QStringLiteral("/my/rips"));
    EXPECT_EQ(WindowDriver().outputPath()->text(), QStringLiteral("/my/rips"));
}

TEST_F(OutputPage, BrowseTakesAFolderAndKeepsItOnCancel)
{
    const QTemporaryDir folder;
    WindowDriver app;
    app.advanceTo(1);
    app.pickFile(app.onPage<QPushButton>(1, "browseBtn"), folder.path());
    EXPECT_EQ(app.outputPath()->text(), folder.path());
    app.pickFile(app.onPage<QPushButton>(1, "browseBtn"), QString());
    EXPECT_EQ(app.outputPath()->text(), folder.path());
    EXPECT_FALSE(QSettings().contains(QLatin1String(settings::defaultDir)));
}
