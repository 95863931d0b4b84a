#include "convert/ConvertDialog.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "convert/ConvertDialogView.h"
#include "convert/FolderOfAudio.h"
#include "support/DialogWatcher.h"
#include "support/DiscMaker.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

void speak(int languageMode)
{
    QSettings().setValue(QLatin1String(settings::language), languageMode);
    loadLanguage();
}

QString music()
{
    return QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
}

class ConvertDialogTest : public ::testing::Test {
protected:
    explicit ConvertDialogTest(int languageMode = 2)
    {
        speak(languageMode);
        dialog = std::make_unique<ConvertDialog>();
        dialog->show();
    }

    ConvertDialogView view() const { return ConvertDialogView(dialog.get()); }

    /// Fills in the folders and clicks.
    /// @return the status text afterwards
    QString convert(const QString& source, const QString& output) const
    {
        view().fill(source, output);
        view().click();
        return view().status();
    }
    QString convert() const { return convert(place.source(), place.output()); }

    FolderOfAudio place;
    std::unique_ptr<ConvertDialog> dialog;
};

class ConvertDialogInJapanese : public ConvertDialogTest {
protected:
    ConvertDialogInJapanese() : ConvertDialogTest(1) {}
};

} // namespace

TEST_F(ConvertDialogTest, TextsAndDefaults)
{
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Convert Files"));
    EXPECT_EQ(dialog->minimumWidth(), 560);
    EXPECT_EQ(view().sourceLabel()->text(), QStringLiteral("① Source folder:"));
    EXPECT_EQ(view().formatLabel()->text(), QStringLiteral("② Output format:"));
    EXPECT_EQ(view().outputLabel()->text(), QStringLiteral("③ Output folder:"));
    for (const QLabel* label : {view().sourceLabel(), view().formatLabel(), view().outputLabel()})
        EXPECT_EQ(label->minimumWidth(), 110);
    EXPECT_EQ(view().sourceBrowse()->text(), QStringLiteral("Browse..."));
    EXPECT_EQ(view().outputBrowse()->text(), QStringLiteral("Browse..."));
    EXPECT_EQ(view().convert()->text(), QStringLiteral("Convert"));
    EXPECT_EQ(view().source()->placeholderText(),
              QStringLiteral("Select source folder (.wav / .aiff / .mp3 / .flac / .aac / .m4a / .ogg / .opus / .wv / "
                             ".dsf / .dff)"));
    EXPECT_EQ(view().output()->placeholderText(), QStringLiteral("Select output folder"));
    EXPECT_TRUE(view().source()->text().isEmpty());
    EXPECT_EQ(view().output()->text(), music());
    EXPECT_TRUE(view().warning()->isHidden());
    EXPECT_EQ(view().warning()->text(),
              QStringLiteral("⚠ DSF/DFF (DSD) conversion is experimental. Sound quality has not been verified, so "
                             "please listen to the converted files to check them."));
    EXPECT_EQ(view().warning()->styleSheet(), QStringLiteral("color: #ffaa00;"));
    EXPECT_TRUE(view().status().isEmpty());
    const std::array<const char*, 3> formats{"WAV", "FLAC", "MP3"};
    ASSERT_EQ(view().format()->count(), 3);
    for (int i = 0; i < 3; ++i) {
        const QString name = QLatin1String(formats[static_cast<size_t>(i)]);
        EXPECT_EQ(view().format()->itemText(i), QStringLiteral("▾ ") + name);
        EXPECT_EQ(view().format()->itemData(i).toString(), name);
    }
    EXPECT_EQ(view().format()->currentIndex(), 1);
}

TEST_F(ConvertDialogInJapanese, TextsInJapanese)
{
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("ファイル変換"));
    EXPECT_EQ(view().sourceLabel()->text(), QStringLiteral("① 変換元フォルダ:"));
    EXPECT_EQ(view().formatLabel()->text(), QStringLiteral("② 出力フォーマット:"));
    EXPECT_EQ(view().outputLabel()->text(), QStringLiteral("③ 出力先フォルダ:"));
    EXPECT_EQ(view().sourceBrowse()->text(), QStringLiteral("参照..."));
    EXPECT_EQ(view().convert()->text(), QStringLiteral("変換"));
    EXPECT_EQ(view().source()->placeholderText(),
              QStringLiteral("変換元フォルダを選択（.wav / .aiff / .mp3 / .flac / .aac / .m4a / .ogg / .opus / .wv / "
                             ".dsf / .dff が対象）"));
    EXPECT_EQ(view().output()->placeholderText(), QStringLiteral("出力先フォルダを選択"));
    EXPECT_EQ(view().warning()->text(),
              QStringLiteral("⚠ DSF/DFF(DSD)の変換は実験的な機能です。音質は未検証のため、変換後は必ず試聴して確認してください。"));

    EXPECT_EQ(convert(QString(), place.output()),
              QStringLiteral("変換元フォルダと出力先フォルダの両方を指定してください。"));
    EXPECT_EQ(convert(place.top() + QStringLiteral("/none"), place.output()),
              QStringLiteral("変換元フォルダが見つかりません。"));
    EXPECT_EQ(convert(place.source(), QStringLiteral("/dev/null/out")),
              QStringLiteral("出力先フォルダを作成できませんでした。"));
    EXPECT_EQ(convert(), QStringLiteral("対応する音声ファイル(.wav/.aiff/.mp3/.flac/.aac/.m4a/.ogg/.opus/.wv/.dsf/.dff)"
                                        "が見つかりませんでした。"));
    place.addWave(QStringLiteral("1.wav"));
    place.add(QStringLiteral("2.wav"), "broken");
    place.add(QStringLiteral("3.flac"), "same");
    EXPECT_EQ(convert(), QStringLiteral("完了: 3件中 1件成功、1件変換不可、1件処理不可(同一形式)"));
    EXPECT_EQ(view().convert()->text(), QStringLiteral("完了"));
    view().click();
    EXPECT_EQ(view().convert()->text(), QStringLiteral("変換"));
    convert();
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album - コピー", "Album - コピー/1.flac", "Album/1.flac"}));
}

TEST_F(ConvertDialogTest, WhatIsMissingIsSaidAndTheFormStaysReady)
{
    const QString both = QStringLiteral("Please select both a source folder and an output folder.");
    EXPECT_EQ(convert(QString(), place.output()), both);
    EXPECT_EQ(convert(place.source(), QString()), both);
    EXPECT_EQ(convert(place.top() + QStringLiteral("/none"), place.output()),
              QStringLiteral("Source folder not found."));
    EXPECT_EQ(convert(writeFile(place.top(), QStringLiteral("file"), "x"), place.output()),
              QStringLiteral("Source folder not found."));
    EXPECT_EQ(convert(place.source(), QStringLiteral("/dev/null/out")),
              QStringLiteral("Could not create the output folder."));
    EXPECT_FALSE(QFileInfo::exists(place.output()));

    QDir().mkpath(place.source() + QStringLiteral("/CD1"));
    place.addWave(QStringLiteral("CD1/1.wav"));
    EXPECT_EQ(convert(place.source(), place.output() + QStringLiteral("/new/one")),
              QStringLiteral("No supported audio files (.wav/.aiff/.mp3/.flac/.aac/.m4a/.ogg/.opus/.wv/.dsf/.dff) "
                             "were found."));
    EXPECT_TRUE(QFileInfo(place.output() + QStringLiteral("/new/one")).isDir());
    EXPECT_EQ(view().convert()->text(), QStringLiteral("Convert"));
    EXPECT_TRUE(view().convert()->isEnabled());

    place.addWave(QStringLiteral("1.wav"));
    EXPECT_EQ(convert(), QStringLiteral("Done: 1 of 1 files converted"));
}

TEST_F(ConvertDialogTest, EachRunMakesAFolderOfItsOwnAndDoneResetsTheForm)
{
    place.addWave(QStringLiteral("1.wav"));
    for (int i = 0; i < 3; ++i) {
        view().format()->setCurrentIndex(2);
        EXPECT_EQ(convert(), QStringLiteral("Done: 1 of 1 files converted"));
        EXPECT_EQ(view().convert()->text(), QStringLiteral("Done"));
        EXPECT_TRUE(view().convert()->isEnabled());
        EXPECT_EQ(view().source()->text(), place.source());

        const QStringList before = place.outputTree();
        view().click();
        EXPECT_EQ(place.outputTree(), before);
        EXPECT_EQ(view().convert()->text(), QStringLiteral("Convert"));
        EXPECT_TRUE(view().source()->text().isEmpty());
        EXPECT_EQ(view().output()->text(), music());
        EXPECT_EQ(view().format()->currentIndex(), 1);
        EXPECT_TRUE(view().status().isEmpty());
    }
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album - Copy", "Album - Copy (2)", "Album - Copy (2)/1.mp3",
                                               "Album - Copy/1.mp3", "Album/1.mp3"}));
}

TEST_F(ConvertDialogTest, ThreeFlacFilesToFlacAreAllSkipped)
{
    for (const char* name : {"1.flac", "2.flac", "3.FLAC"})
        place.add(QLatin1String(name), "x");
    EXPECT_EQ(convert(), QStringLiteral("Done: 0 of 3 files converted, 3 skipped (same format)"));
    EXPECT_TRUE(place.outputTree().isEmpty());
    EXPECT_TRUE(QFileInfo(place.output()).isDir());
    EXPECT_EQ(view().convert()->text(), QStringLiteral("Done"));
}

TEST_F(ConvertDialogTest, AllThreeKindsOfOutcomeAreCounted)
{
    place.addWave(QStringLiteral("1.wav"));
    place.add(QStringLiteral("2.wav"), "broken");
    place.add(QStringLiteral("3.flac"), "same");
    EXPECT_EQ(convert(), QStringLiteral("Done: 1 of 3 files converted, 1 failed, 1 skipped (same format)"));
}

TEST_F(ConvertDialogTest, PickingASourceShowsAndHidesTheWarning)
{
    const QString dsd = place.top() + QStringLiteral("/DSD");
    QDir().mkpath(dsd);
    writeFile(dsd, QStringLiteral("a.DFF"), "x");
    QDir().mkpath(place.source() + QStringLiteral("/below"));
    place.add(QStringLiteral("below/a.dsf"), "x");

    view().source()->setText(dsd);
    EXPECT_TRUE(view().warning()->isHidden());
    EXPECT_EQ(pickPath(view().sourceBrowse(), dsd).value(0), QStringLiteral("Select source folder"));
    EXPECT_EQ(view().source()->text(), dsd);
    EXPECT_EQ(view().output()->text(), music());
    EXPECT_TRUE(view().warning()->isVisible());
    pickPath(view().sourceBrowse(), QString());
    EXPECT_EQ(view().source()->text(), dsd);
    EXPECT_TRUE(view().warning()->isVisible());

    // A run and the reset after it leave the warning as it is.
    EXPECT_EQ(convert(dsd, place.output()), QStringLiteral("Done: 0 of 1 files converted, 1 failed"));
    view().click();
    EXPECT_TRUE(view().source()->text().isEmpty());
    EXPECT_TRUE(view().warning()->isVisible());

    pickPath(view().sourceBrowse(), place.source());
    EXPECT_TRUE(view().warning()->isHidden());
}

TEST_F(ConvertDialogTest, AnEmptyOutputFollowsThePickedSource)
{
    view().output()->clear();
    pickPath(view().sourceBrowse(), place.source());
    EXPECT_EQ(view().output()->text(), place.source() + QStringLiteral("/converted"));
}

TEST_F(ConvertDialogTest, TheOutputPickerStartsAtTheFolderInItsField)
{
    view().output()->setText(place.source());
    EXPECT_EQ(pickPath(view().outputBrowse(), place.top()), (QStringList{"Select output folder", place.source()}));
    EXPECT_EQ(view().output()->text(), place.top());
    pickPath(view().outputBrowse(), QString());
    EXPECT_EQ(view().output()->text(), place.top());
}

TEST_F(ConvertDialogTest, TypingTriggersNothing)
{
    place.addWave(QStringLiteral("1.wav"));
    view().fill(QString(), QString());
    QTest::keyClicks(view().source(), place.source());
    QTest::keyClick(view().source(), Qt::Key_Return);
    QTest::keyClicks(view().output(), place.output());
    QTest::keyClick(view().output(), Qt::Key_Return);
    EXPECT_TRUE(view().status().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(place.output()));
    EXPECT_EQ(view().source()->text(), place.source());
    view().convert()->setFocus();
    QTest::keyClick(view().convert(), Qt::Key_Space);
    EXPECT_EQ(view().status(), QStringLiteral("Done: 1 of 1 files converted"));
}

TEST_F(ConvertDialogTest, FieldsAreNamedAndReachedInOrder)
{
    EXPECT_EQ(view().sourceLabel()->buddy(), view().source());
    EXPECT_EQ(view().formatLabel()->buddy(), view().format());
    EXPECT_EQ(view().outputLabel()->buddy(), view().output());
    EXPECT_NE(view().sourceBrowse()->accessibleName(), view().outputBrowse()->accessibleName());
    const QList<QWidget*> order{view().source(), view().sourceBrowse(), view().format(),
                                view().output(), view().outputBrowse(), view().convert()};
    view().source()->setFocus();
    for (QWidget* expected : order) {
        EXPECT_EQ(dialog->focusWidget(), expected);
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    }
}

TEST_F(ConvertDialogInJapanese, FieldsStandBelowEachOther)
{
    EXPECT_EQ(view().format()->x(), view().source()->x());
    EXPECT_EQ(view().output()->x(), view().source()->x());
    for (const QLabel* label : {view().sourceLabel(), view().formatLabel(), view().outputLabel()})
        EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
}

TEST_F(ConvertDialogTest, TextThatWrapsIsNotCut)
{
    place.add(QStringLiteral("1.dsf"), "x");
    pickPath(view().sourceBrowse(), place.source());
    EXPECT_GT(view().warning()->heightForWidth(view().warning()->width()), view().warning()->fontMetrics().height());
    EXPECT_GE(view().warning()->height(), view().warning()->heightForWidth(view().warning()->width()));

    ASSERT_TRUE(QFile::remove(place.source() + QStringLiteral("/1.dsf")));
    convert();
    EXPECT_GE(view().statusLabel()->height(), view().statusLabel()->heightForWidth(view().statusLabel()->width()));
    place.addWave(QString(200, QLatin1Char('m')) + QStringLiteral(".wav"));
    int width = 0;
    QTimer::singleShot(0, dialog.get(), [&] { width = dialog->width(); });
    convert();
    EXPECT_EQ(width, 560);
}

TEST_F(ConvertDialogTest, FoldersMayBeWrittenInOddWays)
{
    const QString dotted = place.top() + QStringLiteral("/Vol. 1.5");
    QDir().mkpath(dotted);
    writeFile(dotted, QStringLiteral("1.wav"), wrapInWave(makeAudio(1, 1)));
    for (const QString& spelling : {dotted + QStringLiteral("//"), place.source() + QStringLiteral("/../Vol. 1.5"),
                                    dotted + QStringLiteral("/.")}) {
        EXPECT_EQ(convert(spelling, place.output() + QLatin1Char('/')), QStringLiteral("Done: 1 of 1 files converted"));
        view().click();
    }
    EXPECT_EQ(QDir(place.output()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              (QStringList{"Vol. 1.5", "Vol. 1.5 - Copy", "Vol. 1.5 - Copy (2)"}));
}
