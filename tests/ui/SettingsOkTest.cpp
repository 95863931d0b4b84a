#include "ui/SettingsView.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "support/DiscMaker.h"
#include "ui/Restart.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
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

class SettingsOk : public ::testing::Test {
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

    static QVariant stored(const char* key) { return QSettings().value(QLatin1String(key)); }
    static QStringList driveKeys()
    {
        return QSettings().allKeys().filter(QStringLiteral("driveOffsets/"));
    }
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
};

} // namespace

TEST_F(SettingsOk, WritesAllFourKeysEvenUnchanged)
{
    WindowDriver app(2);
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

TEST_F(SettingsOk, NewValuesAreInForceAndStored)
{
    WindowDriver app(2);
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
    EXPECT_TRUE(app.onPage<QLabel>(1, "previewLabel")->text().contains(QStringLiteral("Artist - Title.flac")));
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        EXPECT_EQ(view.retries()->value(), 55);
        EXPECT_EQ(view.offset()->value(), -48);
        EXPECT_EQ(view.folder()->text(), QStringLiteral("/music/new"));
        EXPECT_EQ(view.rule()->text(), QStringLiteral("{artist} - {title}"));
    }));
}

TEST_F(SettingsOk, AnUntouchedFolderReplacesTheOneOfTheOutputPage)
{
    WindowDriver app(2);
    app.outputPath()->setText(QStringLiteral("/only/this/run"));
    pressOk(app, [](const SettingsView&) {});
    EXPECT_EQ(app.outputPath()->text(), music());
    EXPECT_EQ(stored(settings::defaultDir).toString(), music());

    // From now on it equals the default, and the page is left alone.
    app.outputPath()->setText(QStringLiteral("/only/this/run"));
    pressOk(app, [](const SettingsView&) {});
    EXPECT_EQ(app.outputPath()->text(), QStringLiteral("/only/this/run"));
}

TEST_F(SettingsOk, AClearedFolderKeepsTheOldDefault)
{
    QSettings().setValue(QLatin1String(settings::defaultDir), QStringLiteral("/old"));
    WindowDriver app(2);
    pressOk(app, [](const SettingsView& view) { view.folder()->setText(QStringLiteral("   ")); });
    EXPECT_EQ(stored(settings::defaultDir).toString(), QStringLiteral("/old"));
    EXPECT_EQ(app.outputPath()->text(), QStringLiteral("/old"));
}

TEST_F(SettingsOk, AnEmptyRuleBecomesTheDefault)
{
    WindowDriver app(2);
    pressOk(app, [](const SettingsView& view) { view.rule()->setText(QStringLiteral("   ")); });
    EXPECT_EQ(stored(settings::namingRule).toString(), QStringLiteral("{track}. {title}"));
}

TEST_F(SettingsOk, AStoredValueOutOfRangeEndsAtTheLimit)
{
    QSettings().setValue(QLatin1String(settings::maxRetries), 500);
    WindowDriver app(2);
    pressOk(app, [](const SettingsView& view) { EXPECT_EQ(view.retries()->value(), 100); });
    EXPECT_EQ(stored(settings::maxRetries).toInt(), 100);
}

TEST_F(SettingsOk, AnOffsetChangedWithADriveKnownIsThatDrivesOwn)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
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
    EXPECT_EQ(QSettings().value(key + QStringLiteral("/source")).toString(), QStringLiteral("set in Settings"));
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), 667);
    EXPECT_TRUE(withSettings(app, [&model](const SettingsView& view) {
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(), model + QStringLiteral("   (set in Settings)"));
    }));

    // The next reading of the drive finds it again.
    QSettings().setValue(QLatin1String(settings::sampleOffset), 0);
    WindowDriver next(2, {QStringLiteral("/dev/sr0")});
    readDrive(next);
    EXPECT_TRUE(withSettings(next, [&model](const SettingsView& view) {
        EXPECT_EQ(view.offset()->value(), 667);
        EXPECT_EQ(view.at<QLabel>("progressLabel", 0)->text(), model + QStringLiteral("   (set in Settings)"));
    }));
}

TEST_F(SettingsOk, AnUnchangedOffsetLeavesTheDriveAlone)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    readDrive(app);
    pressOk(app, [](const SettingsView& view) { view.retries()->setValue(5); });
    EXPECT_TRUE(driveKeys().isEmpty());
}

TEST_F(SettingsOk, AnOffsetWithoutADriveIsTheGeneralOne)
{
    WindowDriver app(2);
    pressOk(app, [](const SettingsView& view) { view.offset()->setValue(12); });
    EXPECT_EQ(stored(settings::sampleOffset).toInt(), 12);
    EXPECT_TRUE(driveKeys().isEmpty());
}

TEST_F(SettingsOk, ALanguageChangedAndChangedBackAsksTwice)
{
    RecordingStarter starter;
    const ProgramStarterOverride override(starter);
    WindowDriver app(2);
    const QStringList question{"Display Language",
                               "The new display language will be applied after restarting.\nRestart now?"};
    EXPECT_EQ(changeLanguage(app, 1, QMessageBox::No), question);
    EXPECT_EQ(stored(settings::language).toInt(), 1);
    EXPECT_FALSE(isJapanese());
    EXPECT_EQ(changeLanguage(app, 2, QMessageBox::No), question);
    EXPECT_EQ(stored(settings::language).toInt(), 2);
    EXPECT_TRUE(starter.started.isEmpty());
    EXPECT_TRUE(app.window().isVisible());
}

TEST_F(SettingsOk, TheQuestionInJapanese)
{
    WindowDriver app(1);
    EXPECT_EQ(changeLanguage(app, 0, QMessageBox::No),
              (QStringList{"表示言語の変更",
                           "表示言語の変更は、アプリの再起動後に反映されます。\n今すぐ再起動しますか？"}));
    EXPECT_EQ(stored(settings::language).toInt(), 0);
}

TEST_F(SettingsOk, YesStartsTheProgramAnewAndEndsThisOne)
{
    RecordingStarter starter;
    const ProgramStarterOverride override(starter);
    WindowDriver app(2);
    QTimer::singleShot(0, [&app] { changeLanguage(app, 1, QMessageBox::Yes); });
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    patience.start(10000);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(starter.started, QStringList{QCoreApplication::applicationFilePath()});
    EXPECT_EQ(stored(settings::language).toInt(), 1);
}

TEST(ProgramStarter, TheProgramStartedLivesOnItsOwn)
{
    QTemporaryDir folder;
    const QString script = writeFile(folder.path(), QStringLiteral("a program"),
                                     "#!/bin/sh\necho \"$# $PWD\" > \"$0.tmp\" && mv \"$0.tmp\" \"$0.ran\"\n");
    ASSERT_TRUE(QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    ProgramStarter().start(script);
    QFile trace(script + QStringLiteral(".ran"));
    ASSERT_TRUE(QTest::qWaitFor([&trace] { return trace.exists(); }, 10000));
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromLocal8Bit(trace.readAll()).trimmed(), QStringLiteral("0 ") + QDir::currentPath());
}

TEST(ProgramStarter, AProgramThatIsNotThereHurtsNobody)
{
    ProgramStarter().start(QStringLiteral("/nonexistent/program"));
}
