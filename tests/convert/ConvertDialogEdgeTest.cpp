// Whole runs by clicks, in both languages: what is taken, skipped and refused,
// where it goes, and what the dialog says of it.

#include "convert/ConvertDialogStage.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QDir>
#include <QFileInfo>

namespace {

class ConvertDialogEdge : public ConvertDialogStage {
protected:
    /// An AIFF file of the source folder, with the audio of a seed.
    void addAiff(const QString& name, quint32 seed)
    {
        const QString wave =
            writeFile(place.top(), QStringLiteral("for sox.wav"), wrapInWave(makeAudio(1, seed)));
        ASSERT_TRUE(runTool(QStringLiteral("sox"), {wave, QStringLiteral("-t"), QStringLiteral("aiff"),
                                                    place.source() + QLatin1Char('/') + name})
                        .ok());
    }

    QString pickSource(const QString& folder) const
    {
        return pickPath(view().sourceBrowse(), folder).value(0);
    }
};

INSTANTIATE_TEST_SUITE_P(Both, ConvertDialogEdge, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(ConvertDialogEdge, EachRunMakesAFolderOfItsOwnAndDoneResetsTheForm)
{
    place.addWave(QStringLiteral("1.wav"));
    for (int i = 0; i < 3; ++i) {
        view().format()->setCurrentIndex(2);
        EXPECT_EQ(convert(), allDone(1));
        EXPECT_EQ(view().convert()->text(), text("完了", "Done"));
        EXPECT_TRUE(view().convert()->isEnabled());
        EXPECT_EQ(view().source()->text(), place.source());

        const QStringList before = place.outputTree();
        view().click();
        EXPECT_EQ(place.outputTree(), before);
        EXPECT_EQ(view().convert()->text(), text("変換", "Convert"));
        EXPECT_TRUE(view().source()->text().isEmpty());
        EXPECT_EQ(view().output()->text(), music());
        EXPECT_EQ(view().format()->currentIndex(), 1);
        EXPECT_TRUE(view().status().isEmpty());
    }
    QStringList expected{"Album", "Album/1.mp3"};
    for (const QString& copy :
         {text("Album - コピー", "Album - Copy"), text("Album - コピー (2)", "Album - Copy (2)")})
        expected << copy << copy + QStringLiteral("/1.mp3");
    expected.sort();
    EXPECT_EQ(place.outputTree(), expected);
}

TEST_P(ConvertDialogEdge, ThreeFlacFilesToFlacAreAllSkipped)
{
    for (const char* name : {"1.flac", "2.flac", "3.FLAC"})
        place.add(QLatin1String(name), "x");
    EXPECT_EQ(convert(), text("完了: 3件中 0件成功、3件処理不可(同一形式)",
                              "Done: 0 of 3 files converted, 3 skipped (same format)"));
    EXPECT_TRUE(QFileInfo(place.output()).isDir());
    EXPECT_TRUE(place.outputTree().isEmpty());
    EXPECT_EQ(view().convert()->text(), text("完了", "Done"));
}

TEST_P(ConvertDialogEdge, BothEndingsOfAiffAreConvertedToEveryFormat)
{
    addAiff(QStringLiteral("1.aif"), 1);
    addAiff(QStringLiteral("2.AIFF"), 2);
    const QStringList endings{"wav", "flac", "mp3"};
    for (int format = 0; format < 3; ++format) {
        const QString output = place.output() + endings[format];
        view().format()->setCurrentIndex(format);
        EXPECT_EQ(convert(place.source(), output), allDone(2));
        EXPECT_EQ(FolderOfAudio::below(output),
                  (QStringList{"Album", "Album/1." + endings[format], "Album/2." + endings[format]}));
        view().click();
    }
    EXPECT_EQ(samplesOf(place.output() + QStringLiteral("flac/Album/1.flac")), makeAudio(1, 1));
    EXPECT_EQ(samplesOf(place.output() + QStringLiteral("wav/Album/2.wav")), makeAudio(1, 2));
}

TEST_P(ConvertDialogEdge, AudioInSubfoldersAloneIsNoneAtAll)
{
    ASSERT_TRUE(QDir().mkpath(place.source() + QStringLiteral("/CD1")));
    place.addWave(QStringLiteral("CD1/1.wav"));
    EXPECT_EQ(convert(), nothingFound());
    EXPECT_TRUE(QFileInfo(place.output()).isDir());
    EXPECT_TRUE(place.outputTree().isEmpty());
    EXPECT_EQ(view().convert()->text(), text("変換", "Convert"));

    place.addWave(QStringLiteral("2.wav"));
    EXPECT_EQ(convert(), allDone(1));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/2.flac"}));
}

TEST_P(ConvertDialogEdge, ADamagedFileFailsAndTheOthersGoOn)
{
    place.add(QStringLiteral("1.wav"), "broken");
    place.addWave(QStringLiteral("2.wav"), 2);
    EXPECT_EQ(convert(), text("完了: 2件中 1件成功、1件変換不可", "Done: 1 of 2 files converted, 1 failed"));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/2.flac"}));
    EXPECT_EQ(samplesOf(place.runFolder() + QStringLiteral("/2.flac")), makeAudio(1, 2));
}

TEST_P(ConvertDialogEdge, AllThreeKindsOfOutcomeAreCounted)
{
    place.addWave(QStringLiteral("1.wav"));
    place.add(QStringLiteral("2.wav"), "broken");
    place.add(QStringLiteral("3.flac"), "same");
    EXPECT_EQ(convert(), text("完了: 3件中 1件成功、1件変換不可、1件処理不可(同一形式)",
                              "Done: 1 of 3 files converted, 1 failed, 1 skipped (same format)"));
}

TEST_P(ConvertDialogEdge, AFileInThePlaceOfTheRunFolderFailsTheRunAndStays)
{
    place.addWave(QStringLiteral("1.wav"));
    place.add(QStringLiteral("2.flac"), "same");
    ASSERT_TRUE(QDir().mkpath(place.output()));
    writeFile(place.output(), QStringLiteral("Album"), "a letter");
    EXPECT_EQ(convert(), text("完了: 2件中 0件成功、1件変換不可、1件処理不可(同一形式)",
                              "Done: 0 of 2 files converted, 1 failed, 1 skipped (same format)"));
    EXPECT_EQ(place.outputTree(), QStringList{"Album"});
}

TEST_P(ConvertDialogEdge, PickingASourceShowsAndHidesTheWarning)
{
    const QString dsd = place.top() + QStringLiteral("/DSD");
    ASSERT_TRUE(QDir().mkpath(dsd));
    writeFile(dsd, QStringLiteral("a.DFF"), "x");
    ASSERT_TRUE(QDir().mkpath(place.source() + QStringLiteral("/below")));
    place.add(QStringLiteral("below/a.dsf"), "x");

    QTest::keyClicks(view().source(), dsd);
    EXPECT_TRUE(view().warning()->isHidden());
    EXPECT_EQ(pickSource(dsd), text("変換元フォルダを選択", "Select source folder"));
    EXPECT_EQ(view().source()->text(), dsd);
    EXPECT_EQ(view().output()->text(), music());
    EXPECT_TRUE(view().warning()->isVisible());
    pickSource(QString());
    EXPECT_EQ(view().source()->text(), dsd);
    EXPECT_TRUE(view().warning()->isVisible());

    pickSource(place.source());
    EXPECT_TRUE(view().warning()->isHidden());
}

TEST_P(ConvertDialogEdge, TheWarningOutlivesTheRunAndTheResetAfterIt)
{
    place.add(QStringLiteral("1.dsf"), "broken");
    place.addWave(QStringLiteral("2.wav"));
    pickSource(place.source());
    ASSERT_TRUE(view().warning()->isVisible());
    view().format()->setCurrentIndex(0);
    EXPECT_EQ(convert(), text("完了: 2件中 0件成功、1件変換不可、1件処理不可(同一形式)",
                              "Done: 0 of 2 files converted, 1 failed, 1 skipped (same format)"));
    EXPECT_TRUE(view().warning()->isVisible());
    view().click();
    EXPECT_TRUE(view().source()->text().isEmpty());
    EXPECT_EQ(view().output()->text(), music());
    EXPECT_EQ(view().format()->currentText(), QStringLiteral("▾ FLAC"));
    EXPECT_TRUE(view().warning()->isVisible());
}
