// The dialogs in which files and folders are picked.

#include "ui/SettingsView.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/Language.h"

#include <QFileDialog>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// What a file dialog shows when it opens.
struct Picker {
    QString title;
    QStringList filters;
    QString folder;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    QFileDialog::AcceptMode accepts = QFileDialog::AcceptSave;
    bool foldersAlone = false;
    const QWidget* parent = nullptr;
};

/// Clicks a button, and cancels the dialog that comes, in another folder if one
/// is given.
Picker pickerOf(QPushButton* opener, const QString& leftIn = {})
{
    Picker seen;
    const DialogWatcher watcher([&](QDialog* dialog) {
        if (auto* shown = qobject_cast<QFileDialog*>(dialog)) {
            seen = {shown->windowTitle(), shown->nameFilters(), shown->directory().absolutePath(),
                    shown->fileMode(),    shown->acceptMode(),  shown->testOption(QFileDialog::ShowDirsOnly),
                    shown->parentWidget()};
            if (!leftIn.isEmpty())
                shown->setDirectory(leftIn);
        }
        dialog->reject();
    });
    WindowDriver::click(opener);
    return seen;
}

class Pickers : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override
    {
        QSettings().clear();
        ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("one")));
        ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("two")));
    }

    QString place(const char* name) const { return folder.filePath(QLatin1String(name)); }

    static void expectFilePicker(const Picker& seen, WindowDriver& app, const QString& title,
                                 const QString& filter)
    {
        EXPECT_EQ(seen.title, title);
        EXPECT_EQ(seen.filters, QStringList{filter});
        EXPECT_EQ(seen.mode, QFileDialog::ExistingFile);
        EXPECT_EQ(seen.accepts, QFileDialog::AcceptOpen);
        EXPECT_EQ(seen.parent, &app.window());
    }
    static void expectFolderPicker(const Picker& seen, const QWidget* parent, const QString& title,
                                   const QString& start)
    {
        EXPECT_EQ(seen.title, title);
        EXPECT_EQ(seen.folder, start);
        EXPECT_EQ(seen.mode, QFileDialog::Directory);
        EXPECT_EQ(seen.accepts, QFileDialog::AcceptOpen);
        EXPECT_TRUE(seen.foldersAlone);
        EXPECT_EQ(seen.parent, parent);
    }

    QTemporaryDir folder;
};

INSTANTIATE_TEST_SUITE_P(Both, Pickers, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(Pickers, OfFilesHaveTheirTitlesAndFilters)
{
    WindowDriver app(GetParam());
    expectFilePicker(pickerOf(app.onPage<QPushButton>(0, "browseBtn", 1)), app,
                     QStringLiteral("Select CUE file"), QStringLiteral("CUE Sheet (*.cue)"));
    expectFilePicker(
        pickerOf(app.onPage<QPushButton>(0, "browseBtn", 2)), app, QStringLiteral("Select audio file"),
        QStringLiteral("Audio Files (*.wav *.aiff *.aif *.mp3 *.flac *.aac *.m4a *.ogg *.opus *.wv "
                       "*.dsf *.dff)"));
    app.advanceTo(2);
    expectFilePicker(pickerOf(app.onPage<QPushButton>(2, "browseBtn", 0)), app,
                     QStringLiteral("Select cover art"),
                     QStringLiteral("Images (*.png *.jpg *.jpeg *.bmp *.gif)"));
}

// Without a start folder of its own, a dialog opens where the last one was left.
TEST_P(Pickers, OfFilesStartInNoFolderOfTheirOwn)
{
    WindowDriver app(GetParam());
    auto* cue = app.onPage<QPushButton>(0, "browseBtn", 1);
    auto* audio = app.onPage<QPushButton>(0, "browseBtn", 2);
    pickerOf(cue, place("one"));
    EXPECT_EQ(pickerOf(audio, place("two")).folder, place("one"));
    EXPECT_EQ(pickerOf(cue).folder, place("two"));
    app.advanceTo(2);
    auto* cover = app.onPage<QPushButton>(2, "browseBtn", 0);
    EXPECT_EQ(pickerOf(cover, place("one")).folder, place("two"));
    EXPECT_EQ(pickerOf(cover).folder, place("one"));
}

TEST_P(Pickers, OfTheOutputFolderStartsInTheFolderOfTheField)
{
    WindowDriver app(GetParam());
    app.advanceTo(1);
    for (const char* name : {"one", "two"}) {
        app.outputPath()->setText(place(name));
        expectFolderPicker(pickerOf(app.onPage<QPushButton>(1, "browseBtn")), &app.window(),
                           textIn(GetParam(), "出力先フォルダを選択", "Select output folder"), place(name));
    }
}

TEST_P(Pickers, OfTheDefaultFolderStartsInTheFolderOfTheField)
{
    WindowDriver app(GetParam());
    EXPECT_TRUE(withSettings(app, [&](const SettingsView& view) {
        for (const char* name : {"one", "two"}) {
            view.folder()->setText(place(name));
            const Picker seen = pickerOf(view.at<QPushButton>("browseBtn"));
            expectFolderPicker(seen, &app.window(), QStringLiteral("Select folder"), place(name));
        }
    }));
}
