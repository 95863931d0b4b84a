// The Output page by itself.

#include "ui/OutputPage.h"

#include "base/Settings.h"
#include "support/DialogWatcher.h"
#include "ui/PageStage.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// The page with nothing around it.
struct Stage : PageStage {
    explicit Stage(int language = 2) : PageStage(language) { page.show(); }

    QString preview() const { return on<QLabel>(page, "previewLabel")->text(); }
    QLineEdit* folder() const { return on<QLineEdit>(page, "pathEdit"); }
    void choose(int format) { on<QRadioButton>(page, "fmtRadio", format)->click(); }

    OutputPage page{settings};
};

class OutputPageTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
};

} // namespace

TEST_F(OutputPageTest, TextsInEnglish)
{
    Stage stage(2);
    EXPECT_EQ(on<QLabel>(stage.page, "stepHeading")->text(),
              QStringLiteral("Choose the output folder and format"));
    EXPECT_EQ(on<QGroupBox>(stage.page, "sourceGroup", 0)->title(), QStringLiteral("Output Folder"));
    EXPECT_EQ(on<QGroupBox>(stage.page, "sourceGroup", 1)->title(), QStringLiteral("Output Format"));
    EXPECT_EQ(on<QGroupBox>(stage.page, "sourceGroup", 2)->title(), QStringLiteral("Folder Preview"));
    EXPECT_EQ(stage.folder()->placeholderText(), QStringLiteral("Select folder..."));
    EXPECT_EQ(on<QPushButton>(stage.page, "browseBtn")->text(), QStringLiteral("Browse..."));
    EXPECT_EQ(on<QRadioButton>(stage.page, "fmtRadio", 0)->text(),
              QStringLiteral("FLAC  (lossless · tags · cover art)"));
    EXPECT_EQ(on<QRadioButton>(stage.page, "fmtRadio", 1)->text(),
              QStringLiteral("WAV   (uncompressed · tags · cover art)"));
    EXPECT_EQ(on<QRadioButton>(stage.page, "fmtRadio", 2)->text(),
              QStringLiteral("MP3   (lossy · tags · cover art)"));
    EXPECT_EQ(stage.preview(),
              QStringLiteral("Output folder\\\n  └─ Artist - Album\\\n        ├─ 01. Title.flac\n"
                             "        ├─ 02. Title.flac\n        └─ cover.jpg\n\n"
                             "* Multi-disc sets are split into Disc1\\ Disc2\\ …"));
}

TEST_F(OutputPageTest, TextsInJapanese)
{
    Stage stage(1);
    EXPECT_EQ(on<QLabel>(stage.page, "stepHeading")->text(),
              QStringLiteral("出力先とフォーマットを設定してください"));
    EXPECT_EQ(on<QGroupBox>(stage.page, "sourceGroup", 0)->title(), QStringLiteral("出力先フォルダ"));
    EXPECT_EQ(on<QGroupBox>(stage.page, "sourceGroup", 1)->title(), QStringLiteral("出力フォーマット"));
    EXPECT_EQ(on<QGroupBox>(stage.page, "sourceGroup", 2)->title(), QStringLiteral("フォルダ構成プレビュー"));
    EXPECT_EQ(stage.folder()->placeholderText(), QStringLiteral("フォルダを選択..."));
    EXPECT_EQ(on<QPushButton>(stage.page, "browseBtn")->text(), QStringLiteral("参照..."));
    EXPECT_EQ(on<QRadioButton>(stage.page, "fmtRadio", 0)->text(),
              QStringLiteral("FLAC  （可逆圧縮・タグ・アルバムアート埋め込み）"));
    EXPECT_EQ(stage.preview(),
              QStringLiteral("出力先\\\n  └─ アーティスト名 - アルバム名\\\n        ├─ 01. 曲名.flac\n"
                             "        ├─ 02. 曲名.flac\n        └─ cover.jpg\n\n"
                             "※ 複数枚組は Disc1\\ Disc2\\ … に分かれます"));
}

TEST_F(OutputPageTest, ARadioMovesTheHiddenComboAndThePreview)
{
    Stage stage;
    auto* combo = stage.page.findChild<QComboBox*>();
    ASSERT_NE(combo, nullptr);
    EXPECT_TRUE(on<QRadioButton>(stage.page, "fmtRadio", 0)->isChecked());
    EXPECT_EQ(combo->currentText(), QStringLiteral("flac"));
    EXPECT_EQ(stage.page.format(), QStringLiteral("flac"));
    stage.choose(2);
    EXPECT_FALSE(combo->isVisible());
    EXPECT_EQ(combo->currentText(), QStringLiteral("mp3"));
    EXPECT_EQ(stage.page.format(), QStringLiteral("mp3"));
    EXPECT_TRUE(stage.preview().contains(QStringLiteral("01. Title.mp3")));
    stage.choose(1);
    EXPECT_EQ(combo->currentText(), QStringLiteral("wav"));
    EXPECT_TRUE(stage.preview().contains(QStringLiteral("02. Title.wav")));
}

TEST_F(OutputPageTest, ThePreviewFollowsTheNamingRule)
{
    QSettings().setValue(QLatin1String(settings::namingRule),
                         QStringLiteral("{artist}-{album}-{year} {title} {title} {disc}"));
    Stage stage;
    const QString name = QStringLiteral("Artist-Album-Year Title Title {disc}.flac");
    EXPECT_EQ(stage.preview().count(name), 2);
    Stage japanese(1);
    EXPECT_EQ(japanese.preview().count(QStringLiteral("アーティスト名-アルバム名-年 曲名 曲名 {disc}.flac")),
              2);
}

TEST_F(OutputPageTest, StartsInTheDefaultFolderOrTheMusicFolder)
{
    EXPECT_EQ(Stage().folder()->text(), QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    QSettings().setValue(QLatin1String(settings::defaultDir), QStringLiteral("/my/rips"));
    EXPECT_EQ(Stage().folder()->text(), QStringLiteral("/my/rips"));
}

TEST_F(OutputPageTest, BrowseTakesAFolderAndKeepsItOnCancel)
{
    const QTemporaryDir folder;
    Stage stage;
    QObject::connect(&stage.page, &OutputPage::browseClicked, [&stage] { stage.page.browse(); });
    auto* opener = on<QPushButton>(stage.page, "browseBtn");
    EXPECT_EQ(pickPath(opener, folder.path()).value(0), QStringLiteral("Select output folder"));
    EXPECT_EQ(stage.page.folder(), folder.path());
    pickPath(opener, QString());
    EXPECT_EQ(stage.folder()->text(), folder.path());
    EXPECT_FALSE(QSettings().contains(QLatin1String(settings::defaultDir)));
}

TEST_F(OutputPageTest, AnUpdateShowsTheRuleNowInForce)
{
    Stage stage;
    stage.settings.namingRule = QStringLiteral("{title} - {track}");
    EXPECT_TRUE(stage.preview().contains(QStringLiteral("01. Title.flac")));
    stage.page.updatePreview();
    EXPECT_TRUE(stage.preview().contains(QStringLiteral("├─ Title - 01.flac\n")));
}

TEST_F(OutputPageTest, AFolderIsTakenOver)
{
    Stage stage;
    stage.page.setFolder(QStringLiteral("/music/new"));
    EXPECT_EQ(stage.folder()->text(), QStringLiteral("/music/new"));
    EXPECT_EQ(stage.page.folder(), QStringLiteral("/music/new"));
}
