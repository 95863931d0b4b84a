#include "ui/SettingsView.h"

#include "support/DiscMaker.h"
#include "support/Language.h"
#include "ui/Restart.h"

#include <QApplication>
#include <QMessageBox>
#include <QRadioButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

/// Keeps what would have been started.
class RecordingStarter : public ProgramStarter {
public:
    void start(const QString& program) override { started << program; }
    QStringList started;
};

class SettingsOk : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { QSettings().clear(); }

    static void pressOk(WindowDriver& app, const std::function<void(const SettingsView&)>& change)
    {
        EXPECT_TRUE(withSettings(app, [&change](const SettingsView& view) {
            change(view);
            WindowDriver::click(view.ok());
            EXPECT_EQ(view.dialog->result(), QDialog::Accepted);
        }));
    }

    static QString text(const char* ja, const char* en) { return textIn(GetParam(), ja, en); }

    static QVariant stored(const char* key) { return QSettings().value(QLatin1String(key)); }
    static QStringList driveKeys() { return QSettings().allKeys().filter(QStringLiteral("driveOffsets/")); }
    static QString music() { return QStandardPaths::writableLocation(QStandardPaths::MusicLocation); }

    /// Chooses a language, presses OK and answers the question.
    /// @return title and text of the question
    static QStringList changeLanguage(WindowDriver& app, int item, QMessageBox::StandardButton answer)
    {
        QStringList question;
        std::unique_ptr<DialogWatcher> box;
        pressOk(app, [&](const SettingsView& view) {
            view.language()->setCurrentIndex(item);
            box = std::make_unique<DialogWatcher>([&](QDialog* dialog) {
                auto* message = qobject_cast<QMessageBox*>(dialog);
                ASSERT_NE(message, nullptr);
                question = QStringList{message->windowTitle(), message->text()};
                EXPECT_EQ(message->standardButtons(), QMessageBox::Yes | QMessageBox::No);
                EXPECT_EQ(message->defaultButton(), message->button(QMessageBox::Yes));
                QTest::mouseClick(message->button(answer), Qt::LeftButton);
            });
        });
        return question;
    }

    /// A window that has read a disc in a drive of the model "AC/ME  DW".
    static void readDrive(WindowDriver& app)
    {
        app.shelf().audio = makeAudio(200, 1);
        app.shelf().vendor = "AC/ME";
        app.shelf().product = "DW";
        app.advanceTo(2);
    }

    /// Rips what is in the drive as WAV files.
    /// @return the line of the log that says how
    QString readModeOfARip(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
        EXPECT_FALSE(app.runRip().isEmpty());
        return app.logLines().filter(QStringLiteral("Read mode")).value(0);
    }

    QTemporaryDir folder;
};

INSTANTIATE_TEST_SUITE_P(Both, SettingsOk, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(SettingsOk, WritesAllFourKeysEvenUnchanged)
{
    WindowDriver app(GetParam());
    pressOk(app, [](const SettingsView&) {});
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 20);
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), 0);
    EXPECT_EQ(stored(settings::defaultDir).toString(), music());
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{track}. {title}"));
    EXPECT_TRUE(driveKeys().isEmpty());

    QSettings().remove(QLatin1String(settings::maxRetries));
    QSettings().remove(QLatin1String(settings::namingRule));
    pressOk(app, [](const SettingsView&) {});
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 20);
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{track}. {title}"));
}

TEST_P(SettingsOk, NewValuesAreInForceAndStored)
{
    WindowDriver app(GetParam());
    pressOk(app, [](const SettingsView& view) {
        view.retries()->setValue(55);
        view.offset()->setValue(-48);
        view.folder()->setText(QStringLiteral("  /music/new  "));
        view.rule()->setText(QStringLiteral(" {artist} - {title} "));
    });
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 55);
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), -48);
    EXPECT_EQ(stored(settings::defaultDir).toString(), QStringLiteral("/music/new"));
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{artist} - {title}"));
    EXPECT_EQ(app.outputPath()->text(), QStringLiteral("/music/new"));
    EXPECT_TRUE(app.onPage<QLabel>(1, "previewLabel")
                    ->text()
                    .contains(text("アーティスト名 - 曲名.flac", "Artist - Title.flac")));
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        EXPECT_EQ(view.retries()->value(), 55);
        EXPECT_EQ(view.offset()->value(), -48);
        EXPECT_EQ(view.folder()->text(), QStringLiteral("/music/new"));
        EXPECT_EQ(view.rule()->text(), QStringLiteral("{artist} - {title}"));
    }));
}

TEST_P(SettingsOk, AnUntouchedFolderReplacesTheOneOfTheOutputPage)
{
    WindowDriver app(GetParam());
    app.outputPath()->setText(QStringLiteral("/only/this/run"));
    pressOk(app, [](const SettingsView&) {});
    EXPECT_EQ(app.outputPath()->text(), music());
    EXPECT_EQ(stored(settings::defaultDir).toString(), music());

    // From now on it equals the default, and the page is left alone.
    app.outputPath()->setText(QStringLiteral("/only/this/run"));
    pressOk(app, [](const SettingsView&) {});
    EXPECT_EQ(app.outputPath()->text(), QStringLiteral("/only/this/run"));
}

TEST_P(SettingsOk, AClearedFolderKeepsTheOldDefault)
{
    QSettings().setValue(QLatin1String(settings::defaultDir), QStringLiteral("/old"));
    WindowDriver app(GetParam());
    pressOk(app, [](const SettingsView& view) { view.folder()->setText(QStringLiteral("   ")); });
    EXPECT_EQ(stored(settings::defaultDir).toString(), QStringLiteral("/old"));
    EXPECT_EQ(app.outputPath()->text(), QStringLiteral("/old"));
}

TEST_P(SettingsOk, AnEmptyRuleBecomesTheDefault)
{
    WindowDriver app(GetParam());
    pressOk(app, [](const SettingsView& view) { view.rule()->setText(QStringLiteral("   ")); });
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{track}. {title}"));
}

TEST_P(SettingsOk, AStoredValueOutOfRangeIsInForceAndEndsAtTheLimit)
{
    QSettings().setValue(QLatin1String(settings::maxRetries), 500);
    WindowDriver app(GetParam(), {QStringLiteral("/dev/sr0")});
    readDrive(app);
    EXPECT_EQ(readModeOfARip(app),
              QStringLiteral("Read mode   : secure - C2 error pointers (max 500 re-reads / sector)"));
    pressOk(app, [](const SettingsView& view) { EXPECT_EQ(view.retries()->value(), 100); });
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 100);

    WindowDriver next(GetParam(), {QStringLiteral("/dev/sr0")});
    readDrive(next);
    EXPECT_EQ(readModeOfARip(next),
              QStringLiteral("Read mode   : secure - C2 error pointers (max 100 re-reads / sector)"));
}

TEST_P(SettingsOk, AnOffsetChangedWithADriveKnownIsThatDrivesOwn)
{
    WindowDriver app(GetParam(), {QStringLiteral("/dev/sr0")});
    readDrive(app);
    QString model;
    pressOk(app, [&model](const SettingsView& view) {
        const QString note = view.at<QLabel>("progressLabel", 0)->text();
        EXPECT_TRUE(note.endsWith(QStringLiteral("   (Settings value)"))) << note.toStdString();
        model = note.left(note.indexOf(QStringLiteral("   (")));
        view.offset()->setValue(667);
    });
    const QString key = driveOffsetKey(model);
    EXPECT_EQ(QSettings().value(key + QStringLiteral("/offset")).toInt(), 667);
    EXPECT_EQ(QSettings().value(key + QStringLiteral("/source")).toString(),
              QStringLiteral("set in Settings"));
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), 667);
    EXPECT_TRUE(withSettings(app, [&model](const SettingsView& view) {
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(),
                  model + QStringLiteral("   (set in Settings)"));
    }));

    // The next reading of the drive finds it again.
    QSettings().setValue(QLatin1String(settings::sampleOffset), 0);
    WindowDriver next(GetParam(), {QStringLiteral("/dev/sr0")});
    readDrive(next);
    EXPECT_TRUE(withSettings(next, [&model](const SettingsView& view) {
        EXPECT_EQ(view.offset()->value(), 667);
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(),
                  model + QStringLiteral("   (set in Settings)"));
    }));
}

TEST_P(SettingsOk, AnUnchangedOffsetLeavesTheDriveAlone)
{
    WindowDriver app(GetParam(), {QStringLiteral("/dev/sr0")});
    readDrive(app);
    pressOk(app, [](const SettingsView&) {});
    EXPECT_TRUE(driveKeys().isEmpty());
    for (const char* key :
         {settings::maxRetries, settings::sampleOffset, settings::defaultDir, settings::namingRule})
        EXPECT_TRUE(stored(key).isValid()) << key;

    // A drive with an offset of its own keeps it, and it becomes the general one.
    const QString own = driveOffsetKey(QStringLiteral("AC/ME - DW"));
    QSettings().setValue(own + QStringLiteral("/offset"), 6);
    QSettings().setValue(own + QStringLiteral("/source"), QStringLiteral("measured"));
    WindowDriver next(GetParam(), {QStringLiteral("/dev/sr0")});
    readDrive(next);
    pressOk(next, [](const SettingsView& view) { EXPECT_EQ(view.offset()->value(), 6); });
    EXPECT_EQ(QSettings().value(own + QStringLiteral("/offset")).toInt(), 6);
    EXPECT_EQ(QSettings().value(own + QStringLiteral("/source")).toString(), QStringLiteral("measured"));
    EXPECT_EQ(driveKeys().size(), 2);
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), 6);
}

TEST_P(SettingsOk, AnOffsetWithoutADriveIsTheGeneralOne)
{
    WindowDriver app(GetParam());
    pressOk(app, [](const SettingsView& view) { view.offset()->setValue(12); });
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), 12);
    EXPECT_TRUE(driveKeys().isEmpty());
}

TEST_P(SettingsOk, ALanguageChangedAndChangedBackAsksTwice)
{
    RecordingStarter starter;
    const ProgramStarterOverride override(starter);
    WindowDriver app(GetParam());
    const QStringList question{
        text("表示言語の変更", "Display Language"),
        text("表示言語の変更は、アプリの再起動後に反映されます。\n今すぐ再起動しますか？",
             "The new display language will be applied after restarting.\nRestart now?")};
    const int other = GetParam() == 1 ? 2 : 1;
    EXPECT_EQ(changeLanguage(app, other, QMessageBox::No), question);
    EXPECT_EQ(stored(settings::language).toInt(), other);
    EXPECT_EQ(isJapanese(), GetParam() == 1) << "until the next start";
    EXPECT_EQ(changeLanguage(app, GetParam(), QMessageBox::No), question);
    EXPECT_EQ(stored(settings::language).toInt(), GetParam());
    EXPECT_TRUE(starter.started.isEmpty());
    EXPECT_TRUE(app.window().isVisible());
}

TEST_P(SettingsOk, TheChoiceOfTheSystemsLanguageAsksAsWell)
{
    WindowDriver app(GetParam());
    EXPECT_EQ(changeLanguage(app, 0, QMessageBox::No).value(0), text("表示言語の変更", "Display Language"));
    EXPECT_EQ(stored(settings::language).toInt(), 0);
    EXPECT_TRUE(changeLanguage(app, 0, QMessageBox::No).isEmpty()) << "nothing changed this time";
}

TEST_P(SettingsOk, YesStartsTheProgramAnewAndEndsThisOne)
{
    RecordingStarter starter;
    const ProgramStarterOverride override(starter);
    WindowDriver app(GetParam());
    QTimer::singleShot(0, [&app] { changeLanguage(app, 0, QMessageBox::Yes); });
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    patience.start(10000);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(starter.started, QStringList{QCoreApplication::applicationFilePath()});
    EXPECT_EQ(stored(settings::language).toInt(), 0);
}

TEST(ProgramStarter, AProgramThatIsNotThereHurtsNobody)
{
    ProgramStarter().start(QStringLiteral("/nonexistent/program"));
}
