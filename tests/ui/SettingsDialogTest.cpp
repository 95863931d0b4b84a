#include "ui/SettingsView.h"

#include "support/FakeHttpTransport.h"
#include "support/Language.h"
#include "ui/LookupStage.h"
#include "ui/StyleSheet.h"

#include <QCoreApplication>
#include <QFile>
#include <QGroupBox>
#include <QRadioButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>

namespace {

class SettingsDialog : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    static void openSettings(WindowDriver& app, const std::function<void(const SettingsView&)>& step)
    {
        EXPECT_TRUE(withSettings(app, step));
    }

    static QVariant stored(const char* key) { return QSettings().value(QLatin1String(key)); }

    static QString music() { return QStandardPaths::writableLocation(QStandardPaths::MusicLocation); }
};

/// The drives of another platform, with a clock at which one of the program's own
/// threads can be made to wait.
class ClockThatHolds : public DrivePlatform {
public:
    explicit ClockThatHolds(DrivePlatform& driven) : platform(driven) {}
    ~ClockThatHolds() override { gate.release(); }

    QStringList enumerateDrives() override { return platform.enumerateDrives(); }
    std::unique_ptr<DriveDevice> open(const QString& letter) override { return platform.open(letter); }
    void sleepMilliseconds(int duration) override { platform.sleepMilliseconds(duration); }
    qint64 nowNanoseconds() override
    {
        if (QThread::currentThread() != QCoreApplication::instance()->thread() && armed.exchange(false)) {
            holds = true;
            gate.acquire();
        }
        return platform.nowNanoseconds();
    }

    std::atomic<bool> armed = false; ///< the next one to ask waits
    std::atomic<bool> holds = false;
    std::binary_semaphore gate{0};

private:
    DrivePlatform& platform;
};

class SettingsDuringARip : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { QSettings().clear(); }

    /// The audio of a WAV file below the output folder.
    QByteArray ripped(const QString& name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().mid(44) : QByteArray();
    }

    QTemporaryDir folder;
};

class SettingsDuringALookup : public LookupStage, public ::testing::WithParamInterface<int> {
protected:
    void TearDown() override
    {
        gate.release();
        LookupStage::TearDown();
    }

    std::atomic<bool> asked = false;
    std::counting_semaphore<64> gate{0};
    FakeHttpTransport holding{[this](const HttpRequest& request) {
        asked = true;
        gate.acquire();
        gate.release();
        return services.transport().get(request);
    }};
    HttpTransportOverride inPlace{holding};
};

INSTANTIATE_TEST_SUITE_P(Both, SettingsDuringARip, bothLanguages, nameOfLanguage);
INSTANTIATE_TEST_SUITE_P(Both, SettingsDuringALookup, bothLanguages, nameOfLanguage);

} // namespace

TEST_F(SettingsDialog, FrameAndTextsOfTheSettingsTab)
{
    WindowDriver app(2);
    openSettings(app, [](const SettingsView& view) {
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

TEST_F(SettingsDialog, PairsFollowTheLanguage)
{
    WindowDriver app(1);
    openSettings(app, [](const SettingsView& view) {
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

TEST_F(SettingsDialog, FieldsStartWithTheValuesInForce)
{
    QSettings().setValue(QLatin1String(settings::maxRetries), 7);
    QSettings().setValue(QLatin1String(settings::sampleOffset), -30);
    QSettings().setValue(QLatin1String(settings::namingRule), QStringLiteral(" {track} "));
    WindowDriver app(2);
    openSettings(app, [](const SettingsView& view) {
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

TEST_F(SettingsDialog, TheAboutTabTellsWhatTheProgramIs)
{
    WindowDriver app(2);
    openSettings(app, [](const SettingsView& view) {
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

TEST_F(SettingsDialog, EveryFieldHasANameAndTheTabKeyGoesFromTopToBottom)
{
    WindowDriver app(2);
    openSettings(app, [](const SettingsView& view) {
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

TEST_F(SettingsDialog, EnterMeansOkAndEscapeMeansCancel)
{
    WindowDriver app(2);
    openSettings(app, [](const SettingsView& view) {
        view.retries()->setValue(33);
        QTest::keyClick(view.rule(), Qt::Key_Escape);
        EXPECT_FALSE(view.dialog->isVisible());
    });
    EXPECT_FALSE(stored(settings::maxRetries).isValid());
    openSettings(app, [](const SettingsView& view) {
        EXPECT_EQ(view.retries()->value(), 20);
        view.retries()->setValue(34);
        QTest::keyClick(view.rule(), Qt::Key_Return);
        EXPECT_FALSE(view.dialog->isVisible());
    });
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 34);
}

TEST_F(SettingsDialog, CancelChangesNothingAndEachOpeningLeavesADialog)
{
    WindowDriver app(2);
    const auto dialogs = [&app] {
        return app.window().findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly);
    };
    for (int opening = 1; opening <= 2; ++opening) {
        openSettings(app, [](const SettingsView& view) {
            view.retries()->setValue(33);
            view.offset()->setValue(6);
            view.folder()->setText(QStringLiteral("/elsewhere"));
            view.rule()->setText(QStringLiteral("{title}"));
            view.language()->setCurrentIndex(1);
            WindowDriver::click(view.cancel());
        });
        EXPECT_EQ(dialogs().size(), opening);
    }
    EXPECT_EQ(QSettings().allKeys(), QStringList{QLatin1String(settings::language)});
    EXPECT_EQ(stored(settings::language).toInt(), 2);
    EXPECT_EQ(app.outputPath()->text(), music());
}

TEST_F(SettingsDialog, TheFolderIsPickedThroughItsButton)
{
    QTemporaryDir chosen;
    WindowDriver app(2);
    openSettings(app, [&](const SettingsView& view) {
        const QStringList shown = pickPath(view.at<QPushButton>("browseBtn"), chosen.path());
        EXPECT_EQ(shown, (QStringList{"Select folder", music()}));
        EXPECT_EQ(view.folder()->text(), chosen.path());
        pickPath(view.at<QPushButton>("browseBtn"), QString());
        EXPECT_EQ(view.folder()->text(), chosen.path());
    });
}

TEST_F(SettingsDialog, EverythingCanBeChangedDuringTheStepsOfTheWizard)
{
    WindowDriver app(2);
    app.advanceTo(3);
    openSettings(app, [](const SettingsView& view) {
        view.rule()->setText(QStringLiteral(" {title} - {track} "));
        WindowDriver::click(view.ok());
    });
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{title} - {track}"));
    EXPECT_TRUE(app.onPage<QLabel>(1, "previewLabel")->text().contains(QStringLiteral("Title - 01.flac")));
}

TEST_P(SettingsDuringARip, WhatIsChangedThenIsStoredAndLeavesTheRipAsItIs)
{
    QSettings().setValue(QLatin1String(settings::sampleOffset), 6);
    QSettings().setValue(QLatin1String(settings::defaultDir), folder.path());
    WindowDriver app(GetParam(), {QStringLiteral("/dev/sr0")});
    ClockThatHolds clock(app.shelf());
    const DrivePlatformOverride inPlace(clock);
    app.shelf().audio = makeAudio(600, 1);
    app.shelf().tracks = {{0, false}, {200, false}};
    app.advanceTo(1);
    app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
    app.advanceTo(2);
    app.artist()->setText(QStringLiteral("Ada"));
    app.album()->setText(QStringLiteral("Blue"));
    app.advanceTo(3);

    clock.armed = true;
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&clock] { return clock.holds.load(); }, 60000));
    EXPECT_TRUE(withSettings(app, [&app](const SettingsView& view) {
        EXPECT_FALSE(app.rip()->isEnabled()) << "the rip goes on";
        EXPECT_EQ(view.offset()->value(), 6);
        view.offset()->setValue(100);
        view.rule()->setText(QStringLiteral("{title}"));
        WindowDriver::click(view.ok());
        EXPECT_EQ(view.dialog->result(), QDialog::Accepted);
    }));
    EXPECT_EQ(QSettings().value(QLatin1String(settings::sampleOffset)).toInt(), 100);
    EXPECT_EQ(QSettings().value(QLatin1String(settings::namingRule)).toString(), QStringLiteral("{title}"));

    QStringList box;
    const DialogWatcher watcher([&box](QDialog* dialog) {
        box << dialog->windowTitle();
        dialog->accept();
    });
    clock.gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&box] { return !box.isEmpty(); }, 60000));
    // Moved by the offset at the start of the rip, and named by its rule.
    EXPECT_TRUE(ripped(QStringLiteral("Ada - Blue/01. Track 1.wav"))
                    .startsWith(app.shelf().audio.mid(6 * 4, 200 * 2352)));
}

TEST_P(SettingsDuringALookup, TheLookupGoesOnAndItsAnswerArrives)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("Reed"), QStringLiteral("Rain")}}};
    answerRelease(release);
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    while (app.step() < 2)
        WindowDriver::click(app.next());
    ASSERT_TRUE(QTest::qWaitFor([this] { return asked.load(); }, 60000));
    EXPECT_TRUE(withSettings(app, [&app](const SettingsView& view) {
        EXPECT_FALSE(app.next()->isEnabled()) << "the lookup goes on";
        view.retries()->setValue(9);
        WindowDriver::click(view.ok());
    }));
    EXPECT_EQ(QSettings().value(QLatin1String(settings::maxRetries)).toInt(), 9);
    EXPECT_TRUE(app.album()->text().isEmpty());
    EXPECT_FALSE(app.next()->isEnabled());
    gate.release();
    waitForLookup(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(titles(app), (QStringList{"Reed", "Rain"}));
}
