// The Settings dialog by itself. What OK makes of its values in the window:
// SettingsOkTest and SettingsRoadTest.

#include "ui/SettingsDialog.h"

#include "support/DiscMaker.h"
#include "ui/PageStage.h"
#include "ui/SettingsView.h"
#include "ui/StyleSheet.h"

#include <QGroupBox>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// What the dialog needs around it.
struct Stage : PageStage {
    explicit Stage(int language = 2) : PageStage(language, oneDrive) {}

    /// Shows a dialog and lets the step act on it.
    void open(const std::function<void(const SettingsView&)>& step)
    {
        SettingsDialog dialog(settings, disc);
        const QSignalSpy folder(&dialog, &SettingsDialog::folderChanged);
        const QSignalSpy ok(&dialog, &SettingsDialog::applied);
        dialog.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        step(SettingsView{&dialog});
        applied = static_cast<int>(ok.size());
        folders.clear();
        for (const QList<QVariant>& change : folder)
            folders << change.value(0).toString();
    }

    int applied = 0;     ///< in the last opening
    QStringList folders; ///< as the last opening changed them
};

class SettingsDialogTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    static QVariant stored(const char* key) { return QSettings().value(QLatin1String(key)); }

    static QString music() { return QStandardPaths::writableLocation(QStandardPaths::MusicLocation); }
};

} // namespace

TEST_F(SettingsDialogTest, FrameAndTextsOfTheSettingsTab)
{
    Stage stage(2);
    stage.open([](const SettingsView& view) {
        EXPECT_TRUE(view.dialog->isModal());
        EXPECT_EQ(view.dialog->windowTitle(), QStringLiteral("Settings — Tarvel CD Ripper"));
        EXPECT_EQ(view.dialog->minimumSize(), QSize(560, 700));
        EXPECT_EQ(view.dialog->styleSheet(), styleSheetText() + settingsStyleSheetText());
        auto* tabs = view.at<QTabWidget>("settingsTabs");
        ASSERT_EQ(tabs->count(), 2);
        EXPECT_EQ(tabs->tabText(0), QStringLiteral("Settings"));
        EXPECT_EQ(tabs->tabText(1), QStringLiteral("About"));

        QStringList titles;
        for (const auto* group : view.dialog->findChildren<QGroupBox*>(QStringLiteral("sourceGroup")))
            titles << group->title();
        EXPECT_EQ(titles, (QStringList{"Read Settings", "Output Settings", "Language / 言語"}));
        QStringList labels;
        for (const auto* label : view.dialog->findChildren<QLabel*>(QStringLiteral("formLabel")))
            labels << label->text();
        EXPECT_EQ(labels, (QStringList{"Max retries / sector", "Sample offset", "Drive",
                                       "Default output folder", "Naming rule", "Display language"}));
        QStringList notes;
        for (const auto* label : view.dialog->findChildren<QLabel*>(QStringLiteral("progressLabel")))
            notes << label->text();
        ASSERT_EQ(notes.size(), 3);
        EXPECT_EQ(notes[0], QStringLiteral("(shown after selecting a CD drive)"));
        EXPECT_TRUE(notes[1].startsWith(QStringLiteral("Look up your drive in the <a ")));
        EXPECT_TRUE(
            notes[1].contains(QStringLiteral("href=\"http://www.accuraterip.com/driveoffsets.htm\"")));
        EXPECT_TRUE(notes[1].contains(QStringLiteral("#4db8ff")));
        EXPECT_TRUE(notes[1].endsWith(QStringLiteral(">AccurateRip drive list</a>")));
        EXPECT_EQ(notes[2], QStringLiteral("Variables: {track} {title} {artist} {album} {year}"));

        EXPECT_EQ(view.at<QWidget>("navBar")->height(), 52);
        EXPECT_EQ(view.cancel()->text(), QStringLiteral("Cancel"));
        EXPECT_EQ(view.ok()->text(), QStringLiteral("OK"));
        EXPECT_EQ(view.cancel()->size(), QSize(90, 32));
        EXPECT_EQ(view.ok()->size(), QSize(90, 32));
        EXPECT_EQ(view.at<QPushButton>("browseBtn")->width(), 40);
    });
}

TEST_F(SettingsDialogTest, PairsFollowTheLanguage)
{
    Stage stage(1);
    stage.open([](const SettingsView& view) {
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(),
                  QStringLiteral("（CDドライブを選んで②へ進むと表示されます）"));
        const QString list = view.at<QLabel>("progressLabel", 1)->text();
        EXPECT_TRUE(list.startsWith(QStringLiteral("ドライブの値は <a ")));
        EXPECT_TRUE(list.endsWith(QStringLiteral(">AccurateRipのドライブ一覧</a> で調べられます")));
        EXPECT_EQ(view.at<QLabel>("formLabel", 5)->text(), QStringLiteral("表示言語"));
        QStringList items;
        for (int i = 0; i < view.language()->count(); ++i)
            items << view.language()->itemText(i);
        EXPECT_EQ(items, (QStringList{"自動（Windowsの言語に合わせる）", "日本語", "English"}));
        EXPECT_EQ(view.language()->currentIndex(), 1);
    });
}

TEST_F(SettingsDialogTest, FieldsStartWithTheValuesInForce)
{
    QSettings().setValue(QLatin1String(settings::maxRetries), 7);
    QSettings().setValue(QLatin1String(settings::sampleOffset), -30);
    QSettings().setValue(QLatin1String(settings::namingRule), QStringLiteral(" {track} "));
    Stage stage(2);
    stage.open([](const SettingsView& view) {
        EXPECT_EQ(view.retries()->value(), 7);
        EXPECT_EQ(view.retries()->minimum(), 1);
        EXPECT_EQ(view.retries()->maximum(), 100);
        EXPECT_EQ(view.offset()->text(), QStringLiteral("-30 samples"));
        EXPECT_EQ(view.offset()->minimum(), -2000);
        EXPECT_EQ(view.offset()->maximum(), 2000);
        EXPECT_EQ(view.folder()->text(), music());
        EXPECT_EQ(view.rule()->text(), QStringLiteral(" {track} "));
        EXPECT_EQ(view.language()->currentText(), QStringLiteral("English"));
        EXPECT_EQ(view.language()->itemText(0), QStringLiteral("Auto (follow Windows)"));
    });
}

TEST_F(SettingsDialogTest, TheAboutTabTellsWhatTheProgramIs)
{
    Stage stage(2);
    stage.open([](const SettingsView& view) {
        view.at<QTabWidget>("settingsTabs")->setCurrentIndex(1);
        auto* icon = view.at<QLabel>("aboutIcon");
        EXPECT_EQ(icon->size(), QSize(80, 80));
        EXPECT_EQ(icon->pixmap(Qt::ReturnByValue).size(), QSize(80, 80));
        EXPECT_EQ(view.at<QLabel>("aboutTitle")->text(), QStringLiteral("Tarvel CD Ripper"));
        EXPECT_EQ(view.at<QLabel>("aboutVer")->text(), QStringLiteral("Version 2.0.0 (build 20261006-1720)"));
        EXPECT_EQ(view.at<QLabel>("aboutDesc")->text(),
                  QStringLiteral("High Fidelity CD Ripper & Audio Converter\n\nPart of the Tarvel Series\n"
                                 "Rip with Tarvel CD Ripper, enjoy with Tarvel Player\n\n"
                                 "Rip: Audio CD / CUE+BIN / audio file\nAccurateRip verification\n"
                                 "Tags & cover art (MusicBrainz / iTunes)\n\nConvert: 11 audio formats\n"
                                 "Output: FLAC / WAV / MP3"));
        auto* page = view.at<QTabWidget>("settingsTabs")->currentWidget();
        EXPECT_EQ(page->findChildren<QFrame*>(QStringLiteral("hline")).size(), 2);
        auto* author = view.at<QLabel>("aboutAuthor");
        EXPECT_FALSE(author->text().isEmpty());
        auto* site = page->findChildren<QLabel*>().last();
        EXPECT_TRUE(site->text().contains(QStringLiteral("href=\"https://tarvel.example/\"")));
        EXPECT_TRUE(site->openExternalLinks());
        EXPECT_GT(site->y(), author->y());
    });
}

TEST_F(SettingsDialogTest, EveryFieldHasANameAndTheTabKeyGoesFromTopToBottom)
{
    Stage stage(2);
    stage.open([](const SettingsView& view) {
        auto* link = view.at<QLabel>("progressLabel", 1);
        auto* browse = view.at<QPushButton>("browseBtn");
        const QList<QWidget*> order{view.retries(), view.offset(),   link,          view.folder(), browse,
                                    view.rule(),    view.language(), view.cancel(), view.ok()};
        view.retries()->setFocus();
        for (QWidget* expected : order) {
            EXPECT_EQ(view.dialog->focusWidget(), expected) << expected->objectName().toStdString();
            QTest::keyClick(view.dialog->focusWidget(), Qt::Key_Tab);
        }
        EXPECT_EQ(view.retries()->accessibleName(), QStringLiteral("Max retries / sector"));
        EXPECT_EQ(view.offset()->accessibleName(), QStringLiteral("Sample offset"));
        EXPECT_EQ(view.folder()->accessibleName(), QStringLiteral("Default output folder"));
        EXPECT_EQ(view.rule()->accessibleName(), QStringLiteral("Naming rule"));
        EXPECT_EQ(view.language()->accessibleName(), QStringLiteral("Display language"));
        EXPECT_FALSE(browse->accessibleName().isEmpty());
        EXPECT_EQ(view.at<QLabel>("formLabel", 0)->buddy(), view.retries());
        EXPECT_EQ(view.at<QLabel>("formLabel", 3)->buddy(), view.folder());
    });
}

TEST_F(SettingsDialogTest, EnterMeansOkAndEscapeMeansCancel)
{
    Stage stage(2);
    stage.open([](const SettingsView& view) {
        view.retries()->setValue(33);
        QTest::keyClick(view.rule(), Qt::Key_Escape);
        EXPECT_FALSE(view.dialog->isVisible());
    });
    EXPECT_FALSE(stored(settings::maxRetries).isValid());
    stage.open([](const SettingsView& view) {
        EXPECT_EQ(view.retries()->value(), 20);
        view.retries()->setValue(34);
        QTest::keyClick(view.rule(), Qt::Key_Return);
        EXPECT_FALSE(view.dialog->isVisible());
    });
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 34);
}

TEST_F(SettingsDialogTest, TheFolderIsPickedThroughItsButton)
{
    QTemporaryDir chosen;
    Stage stage(2);
    stage.open([&](const SettingsView& view) {
        const QStringList shown = pickPath(view.at<QPushButton>("browseBtn"), chosen.path());
        EXPECT_EQ(shown, (QStringList{"Select folder", music()}));
        EXPECT_EQ(view.folder()->text(), chosen.path());
        pickPath(view.at<QPushButton>("browseBtn"), QString());
        EXPECT_EQ(view.folder()->text(), chosen.path());
    });
}

TEST_F(SettingsDialogTest, OkPutsTheValuesInForceAndStoresThem)
{
    Stage stage;
    stage.open([&stage](const SettingsView& view) {
        view.retries()->setValue(55);
        view.offset()->setValue(-48);
        view.folder()->setText(QStringLiteral("  /music/new  "));
        view.rule()->setText(QStringLiteral(" {artist} - {title} "));
        EXPECT_EQ(stage.settings.maxRetries, 20) << "nothing before OK";
        view.ok()->click();
        EXPECT_EQ(view.dialog->result(), QDialog::Accepted);
    });
    EXPECT_EQ(stage.applied, 1);
    EXPECT_EQ(stage.folders, QStringList{QStringLiteral("/music/new")});
    for (const RipSettings& seen : {stage.settings, RipSettings::load()}) {
        EXPECT_EQ(seen.maxRetries, 55);
        EXPECT_EQ(seen.sampleOffset, -48);
        EXPECT_EQ(seen.defaultFolder, QStringLiteral("/music/new"));
        EXPECT_EQ(seen.namingRule, QStringLiteral("{artist} - {title}"));
    }
    EXPECT_TRUE(QSettings().allKeys().filter(QStringLiteral("driveOffsets/")).isEmpty());
}

TEST_F(SettingsDialogTest, CancelSaysAndChangesNothing)
{
    Stage stage;
    stage.open([](const SettingsView& view) {
        view.retries()->setValue(33);
        view.offset()->setValue(6);
        view.folder()->setText(QStringLiteral("/elsewhere"));
        view.rule()->setText(QStringLiteral("{title}"));
        view.language()->setCurrentIndex(1);
        view.cancel()->click();
        EXPECT_EQ(view.dialog->result(), QDialog::Rejected);
        EXPECT_FALSE(view.dialog->isVisible());
    });
    EXPECT_EQ(stage.applied, 0);
    EXPECT_TRUE(stage.folders.isEmpty());
    EXPECT_EQ(stage.settings.maxRetries, 20);
    EXPECT_EQ(QSettings().allKeys(), QStringList{QLatin1String(settings::language)});
}

TEST_F(SettingsDialogTest, AFolderThatIsTheDefaultOrBlankIsNoChange)
{
    Stage stage;
    stage.settings.defaultFolder = QStringLiteral("/old");
    for (const char* typed : {"/old", "   "}) {
        stage.open([typed](const SettingsView& view) {
            view.folder()->setText(QLatin1String(typed));
            view.ok()->click();
        });
        EXPECT_TRUE(stage.folders.isEmpty()) << typed;
        EXPECT_EQ(stage.applied, 1);
        EXPECT_EQ(stage.settings.defaultFolder, QStringLiteral("/old"));
    }
}

TEST_F(SettingsDialogTest, TheDriveIsNamedAndAnOffsetSetForItIsItsOwn)
{
    Stage stage;
    stage.shelf.audio = makeAudio(60, 1);
    ASSERT_TRUE(stage.disc.openDrive(stage.shelf.letter));
    const QString group = QStringLiteral("driveOffsets/ACME - DISC READER 9");
    stage.open([](const SettingsView& view) {
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(),
                  QStringLiteral("ACME - DISC READER 9   (Settings value)"));
        view.ok()->click();
    });
    EXPECT_FALSE(QSettings().contains(group + QStringLiteral("/offset"))) << "unchanged";
    stage.open([](const SettingsView& view) {
        view.offset()->setValue(667);
        view.ok()->click();
    });
    EXPECT_EQ(QSettings().value(group + QStringLiteral("/offset")).toInt(), 667);
    EXPECT_EQ(stage.settings.sampleOffset, 667);
    stage.open([](const SettingsView& view) {
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(),
                  QStringLiteral("ACME - DISC READER 9   (set in Settings)"));
    });
}
