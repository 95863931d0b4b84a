// Sources, targets and neighbours that a conversion must not trip over.

#include "convert/ConversionStage.h"
#include "support/FileSizeLimit.h"

#include <QDir>
#include <QFile>

class ConversionTrouble : public ConversionStage {};

TEST_F(ConversionTrouble, ADamagedFileFailsAndTheOthersGoOn)
{
    place.addWave(QStringLiteral("1.wav"));
    place.add(QStringLiteral("2.wav"), "RIFF but nothing else");
    place.add(QStringLiteral("3.mp3"), QByteArray());
    place.add(QStringLiteral("4.dsf"), QByteArray(5000, '\xff'));
    place.addWave(QStringLiteral("5.wav"));
    EXPECT_EQ(run(), (Counts{2, 3, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/1.flac", "Album/5.flac"}));
}

TEST_F(ConversionTrouble, ARunWithoutSuccessLeavesNoFolderButTheOneAbove)
{
    place.add(QStringLiteral("1.wav"), "broken");
    QDir().mkpath(place.output() + QStringLiteral("/Other"));
    EXPECT_EQ(run(), (Counts{0, 1, 0}));
    EXPECT_EQ(place.outputTree(), QStringList{"Other"});
}

TEST_F(ConversionTrouble, TheSourceFolderVanishesOnTheWay)
{
    for (const char* name : {"1.wav", "2.wav", "3.wav"})
        place.addWave(QLatin1String(name));
    const Counts counts = run([this](int number) {
        if (number == 2)
            QDir(place.source()).removeRecursively();
    });
    EXPECT_EQ(counts, (Counts{1, 2, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/1.flac"}));
}

TEST_F(ConversionTrouble, TheRunFolderVanishesOnTheWayAndIsMadeAgain)
{
    for (const char* name : {"1.wav", "2.wav"})
        place.addWave(QLatin1String(name));
    const Counts counts = run([this](int number) {
        if (number == 2)
            QDir(place.runFolder()).removeRecursively();
    });
    EXPECT_EQ(counts, (Counts{2, 0, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/2.flac"}));
}

TEST_F(ConversionTrouble, WhatADiskHasNoRoomForFailsAndIsRemoved)
{
    place.addWave(QStringLiteral("1 short.wav"), 1, 1);
    place.addWave(QStringLiteral("2 long.wav"), 2, 75);
    place.addWave(QStringLiteral("3 short.wav"), 3, 1);
    // The header and one sector of 2352 bytes fit, 75 sectors do not.
    {
        const FileSizeLimit limit(16 * 1024);
        EXPECT_EQ(run(), (Counts{2, 1, 0}));
    }
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/1 short.flac", "Album/3 short.flac"}));
    {
        const FileSizeLimit limit(10);
        EXPECT_EQ(run(), (Counts{0, 3, 0}));
    }
    EXPECT_FALSE(QFileInfo::exists(place.output() + QStringLiteral("/Album - Copy")));
}

TEST_F(ConversionTrouble, ATargetNameThatIsTooLongFails)
{
    place.addWave(QString(252, QLatin1Char('n')) + QStringLiteral(".wv"));
    place.addWave(QString(251, QLatin1Char('n')) + QStringLiteral(".wav"));
    place.addWave(QString(250, QLatin1Char('n')) + QStringLiteral(".wav"));
    // Of 255 bytes that a name may have, ".flac" takes five.
    EXPECT_EQ(run(), (Counts{1, 2, 0}));
    EXPECT_EQ(place.outputTree().size(), 2);
}

TEST_F(ConversionTrouble, TheOutputMayLieInsideTheSource)
{
    place.addWave(QStringLiteral("1.wav"));
    ConversionRun conversion(place.source(), place.source(), QStringLiteral("WAV"),
                             [](const QString&) { return true; });
    EXPECT_EQ(conversion.convert(audioFilesIn(place.source())).skipped, 1);
    EXPECT_EQ(FolderOfAudio::below(place.source()), QStringList{"1.wav"});
    ConversionRun again(place.source(), place.source(), QStringLiteral("FLAC"),
                        [](const QString&) { return true; });
    EXPECT_EQ(again.convert(audioFilesIn(place.source())).converted, 1);
    EXPECT_EQ(FolderOfAudio::below(place.source()), (QStringList{"1.wav", "Album", "Album/1.flac"}));
    EXPECT_EQ(contentOf(place.source() + QStringLiteral("/1.wav")), wrapInWave(makeAudio(1, 1)));
}

TEST_F(ConversionTrouble, ASourceInsideTheOutputKeepsItsFiles)
{
    place.addWave(QStringLiteral("1.wav"));
    ConversionRun conversion(place.source(), place.top(), QStringLiteral("FLAC"),
                             [](const QString&) { return true; });
    EXPECT_EQ(conversion.convert(audioFilesIn(place.source())).converted, 1);
    EXPECT_EQ(FolderOfAudio::below(place.top()),
              (QStringList{"Album", "Album - Copy", "Album - Copy/1.flac", "Album/1.wav"}));
}

TEST_F(ConversionTrouble, AFileInThePlaceOfTheRunFolderStays)
{
    place.addWave(QStringLiteral("1.wav"));
    QDir().mkpath(place.output());
    writeFile(place.output(), QStringLiteral("Album"), "a letter");
    EXPECT_EQ(run(), (Counts{0, 1, 0}));
    EXPECT_EQ(contentOf(place.runFolder()), "a letter");
}

TEST_F(ConversionTrouble, AFolderThatSomebodyElseMakesMeanwhileStays)
{
    place.add(QStringLiteral("1.wav"), "broken");
    QDir().mkpath(place.output());
    writeFile(place.output(), QStringLiteral("Album"), "a letter");
    const Counts counts = run([this](int) {
        QFile::remove(place.runFolder());
        QDir().mkpath(place.runFolder());
        writeFile(place.runFolder(), QStringLiteral("letter.txt"), "kept");
    });
    EXPECT_EQ(counts, (Counts{0, 1, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/letter.txt"}));
}

TEST_F(ConversionTrouble, AFolderThatSomebodyElseMakesMeanwhileKeepsFilesOfTheSameNames)
{
    place.addWave(QStringLiteral("1.wav"));
    place.add(QStringLiteral("2.wav"), "broken");
    place.add(QStringLiteral("3.flac"), "same");
    QDir().mkpath(place.output());
    writeFile(place.output(), QStringLiteral("Album"), "a letter");
    const Counts counts = run([this](int number) {
        if (number > 1)
            return;
        QFile::remove(place.runFolder());
        QDir().mkpath(place.runFolder());
        for (const char* name : {"1.flac", "2.flac", "3.flac"})
            writeFile(place.runFolder(), QLatin1String(name), name);
    });
    EXPECT_EQ(counts, (Counts{0, 2, 1}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/1.flac", "Album/2.flac", "Album/3.flac"}));
    for (const char* name : {"1.flac", "2.flac", "3.flac"})
        EXPECT_EQ(contentOf(place.runFolder() + QLatin1Char('/') + QLatin1String(name)), name);
}

TEST_F(ConversionTrouble, AFileInThePlaceOfTheRunFolderThatGoesAwayIsNotReplaced)
{
    for (const char* name : {"1.wav", "2.wav"})
        place.addWave(QLatin1String(name));
    QDir().mkpath(place.output());
    writeFile(place.output(), QStringLiteral("Album"), "a letter");
    EXPECT_EQ(run([this](int) { QFile::remove(place.runFolder()); }), (Counts{0, 2, 0}));
    EXPECT_TRUE(place.outputTree().isEmpty());
}

TEST_F(ConversionTrouble, ThousandsOfFilesAreAllCounted)
{
    constexpr int count = 5000;
    const QByteArray wave = wrapInWave(makeAudio(1, 1).left(400));
    for (int i = 0; i < count; ++i) {
        const bool toConvert = i % 10 == 0;
        place.add(QString::number(i) + (i % 5 == 0 ? QStringLiteral(".wav") : QStringLiteral(".flac")),
                  toConvert ? wave : QByteArray());
    }
    // Of ten files one is audio, one is empty, and eight are in the format already.
    EXPECT_EQ(run(), (Counts{500, 500, 4000}));
    EXPECT_EQ(place.outputTree().size(), 1 + 500);
}
