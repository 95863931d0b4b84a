// The Settings dialog in its window, on any step and whatever is under way.

#include "ui/SettingsView.h"

#include "support/FakeHttpTransport.h"
#include "support/Language.h"
#include "ui/LookupStage.h"

#include <QCoreApplication>
#include <QFile>
#include <QRadioButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>

namespace {

class SettingsRoad : public ::testing::Test {
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

TEST_F(SettingsRoad, CancelChangesNothingAndEachOpeningLeavesADialog)
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

TEST_F(SettingsRoad, EverythingCanBeChangedDuringTheStepsOfTheWizard)
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
