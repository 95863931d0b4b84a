#include "convert/ConvertDialogStage.h"

#include "support/DiscMaker.h"

#include <QDir>
#include <QImage>
#include <QTimer>

#include <cstdlib>

namespace {

using ConvertDialogTest = ConvertDialogStage;

/// How much of a widget's picture is not background, in whole black pixels.
double inkOf(QWidget& widget)
{
    const QImage picture = widget.grab().toImage();
    const int paper = qGray(picture.pixel(0, 0));
    double ink = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ink += std::abs(qGray(picture.pixel(x, y)) - paper) / 255.0;
    }
    return ink;
}

/// What the text of a label takes where it has all the room that it needs.
double inkOnOneLine(const QLabel& label)
{
    QLabel roomy(label.text());
    roomy.setTextFormat(Qt::PlainText);
    roomy.setFont(label.font());
    roomy.setPalette(label.palette());
    roomy.setMargin(4);
    roomy.resize(roomy.sizeHint());
    return inkOf(roomy);
}

INSTANTIATE_TEST_SUITE_P(Both, ConvertDialogTest, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(ConvertDialogTest, TextsAndDefaults)
{
    EXPECT_EQ(dialog->windowTitle(), text("ファイル変換", "Convert Files"));
    EXPECT_EQ(dialog->minimumWidth(), 560);
    EXPECT_EQ(view().sourceLabel()->text(), text("① 変換元フォルダ:", "① Source folder:"));
    EXPECT_EQ(view().formatLabel()->text(), text("② 出力フォーマット:", "② Output format:"));
    EXPECT_EQ(view().outputLabel()->text(), text("③ 出力先フォルダ:", "③ Output folder:"));
    for (const QLabel* label : {view().sourceLabel(), view().formatLabel(), view().outputLabel()})
        EXPECT_EQ(label->minimumWidth(), 110);
    EXPECT_EQ(view().sourceBrowse()->text(), text("参照...", "Browse..."));
    EXPECT_EQ(view().outputBrowse()->text(), text("参照...", "Browse..."));
    EXPECT_EQ(view().convert()->text(), text("変換", "Convert"));
    EXPECT_EQ(view().source()->placeholderText(),
              text("変換元フォルダを選択（.wav / .aiff / .mp3 / .flac / .aac / .m4a / .ogg / .opus / .wv / "
                   ".dsf / .dff が対象）",
                   "Select source folder (.wav / .aiff / .mp3 / .flac / .aac / .m4a / .ogg / .opus / .wv / "
                   ".dsf / .dff)"));
    EXPECT_EQ(view().output()->placeholderText(), text("出力先フォルダを選択", "Select output folder"));
    EXPECT_TRUE(view().source()->text().isEmpty());
    EXPECT_EQ(view().output()->text(), music());
    EXPECT_TRUE(view().warning()->isHidden());
    EXPECT_EQ(
        view().warning()->text(),
        text("⚠ "
             "DSF/"
             "DFF(DSD)の変換は実験的な機能です。音質は未検証のため、変換後は必ず試聴して確認してください。",
             "⚠ DSF/DFF (DSD) conversion is experimental. Sound quality has not been verified, so "
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

TEST_P(ConvertDialogTest, WhatIsMissingIsSaidAndTheFormStaysReady)
{
    const QString both = text("変換元フォルダと出力先フォルダの両方を指定してください。",
                              "Please select both a source folder and an output folder.");
    EXPECT_EQ(convert(QString(), place.output()), both);
    EXPECT_EQ(convert(place.source(), QString()), both);
    EXPECT_EQ(convert(place.top() + QStringLiteral("/none"), place.output()),
              text("変換元フォルダが見つかりません。", "Source folder not found."));
    EXPECT_EQ(convert(writeFile(place.top(), QStringLiteral("file"), "x"), place.output()),
              text("変換元フォルダが見つかりません。", "Source folder not found."));
    EXPECT_EQ(convert(place.source(), place.top() + QStringLiteral("/file/out")),
              text("出力先フォルダを作成できませんでした。", "Could not create the output folder."));
    EXPECT_FALSE(QFileInfo::exists(place.output()));

    QDir().mkpath(place.source() + QStringLiteral("/CD1"));
    place.addWave(QStringLiteral("CD1/1.wav"));
    EXPECT_EQ(convert(place.source(), place.output() + QStringLiteral("/new/one")), nothingFound());
    EXPECT_TRUE(QFileInfo(place.output() + QStringLiteral("/new/one")).isDir());
    EXPECT_EQ(view().convert()->text(), text("変換", "Convert"));
    EXPECT_TRUE(view().convert()->isEnabled());

    place.addWave(QStringLiteral("1.wav"));
    EXPECT_EQ(convert(), allDone(1));
}

TEST_P(ConvertDialogTest, AnEmptyOutputFollowsThePickedSource)
{
    view().output()->clear();
    pickPath(view().sourceBrowse(), place.source());
    EXPECT_EQ(view().output()->text(), place.source() + QStringLiteral("/converted"));
}

TEST_P(ConvertDialogTest, TheOutputPickerStartsAtTheFolderInItsField)
{
    view().output()->setText(place.source());
    EXPECT_EQ(pickPath(view().outputBrowse(), place.top()),
              (QStringList{text("出力先フォルダを選択", "Select output folder"), place.source()}));
    EXPECT_EQ(view().output()->text(), place.top());
    pickPath(view().outputBrowse(), QString());
    EXPECT_EQ(view().output()->text(), place.top());
}

TEST_P(ConvertDialogTest, TypingTriggersNothing)
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
    EXPECT_EQ(view().status(), allDone(1));
}

TEST_P(ConvertDialogTest, FieldsAreNamedAndReachedInOrder)
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

TEST_P(ConvertDialogTest, FieldsStandBelowEachOther)
{
    EXPECT_EQ(view().format()->x(), view().source()->x());
    EXPECT_EQ(view().output()->x(), view().source()->x());
    for (const QLabel* label : {view().sourceLabel(), view().formatLabel(), view().outputLabel()})
        EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
}

TEST_P(ConvertDialogTest, TextThatWrapsIsNotCut)
{
    place.add(QStringLiteral("1.dsf"), "x");
    pickPath(view().sourceBrowse(), place.source());
    EXPECT_GT(view().warning()->heightForWidth(view().warning()->width()),
              view().warning()->fontMetrics().height());
    EXPECT_GE(view().warning()->height(), view().warning()->heightForWidth(view().warning()->width()));

    ASSERT_TRUE(QFile::remove(place.source() + QStringLiteral("/1.dsf")));
    convert();
    EXPECT_GE(view().statusLabel()->height(),
              view().statusLabel()->heightForWidth(view().statusLabel()->width()));
}

TEST_P(ConvertDialogTest, ALongNameWithoutBlanksIsPaintedToItsEnd)
{
    const QString name = QString(200, QLatin1Char('m')) + QStringLiteral(".wav");
    place.addWave(name);
    QString running;
    int width = 0;
    double painted = 0;
    double whole = 0;
    QTimer moment;
    moment.setSingleShot(true);
    QObject::connect(&moment, &QTimer::timeout, [&] {
        running = view().status();
        width = dialog->width();
        painted = inkOf(*view().statusLabel());
        whole = inkOnOneLine(*view().statusLabel());
    });
    moment.start(0);
    convert();
    EXPECT_EQ(running, text("変換中 (1/1): %1", "Converting (1/1): %1").arg(name));
    EXPECT_EQ(width, 560);
    EXPECT_GT(whole, 0);
    EXPECT_NEAR(painted / whole, 1, 0.02);
}

TEST_P(ConvertDialogTest, FoldersMayBeWrittenInOddWays)
{
    const QString dotted = place.top() + QStringLiteral("/Vol. 1.5");
    QDir().mkpath(dotted);
    writeFile(dotted, QStringLiteral("1.wav"), wrapInWave(makeAudio(1, 1)));
    for (const QString& spelling :
         {dotted + QStringLiteral("//"), place.source() + QStringLiteral("/../Vol. 1.5"),
          dotted + QStringLiteral("/.")}) {
        EXPECT_EQ(convert(spelling, place.output() + QLatin1Char('/')), allDone(1));
        view().click();
    }
    EXPECT_EQ(QDir(place.output()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              (QStringList{"Vol. 1.5", text("Vol. 1.5 - コピー", "Vol. 1.5 - Copy"),
                           text("Vol. 1.5 - コピー (2)", "Vol. 1.5 - Copy (2)")}));
}
