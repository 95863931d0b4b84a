#include "ui/RipLog.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "disc/DiscModel.h"
#include "rip/RipTypes.h"
#include "ui/RipCounters.h"

#include <QSettings>

#include <gtest/gtest.h>

namespace {

void speak(int mode)
{
    QSettings().setValue(QLatin1String(settings::language), mode);
    loadLanguage();
}

const QString rule = QStringLiteral("═══════════════════════════════════════");

riplog::Header physicalHeader(int offset)
{
    riplog::Header header;
    header.startTime = QStringLiteral("2026-01-02  03:04:05");
    header.album = QStringLiteral("Blue (Live)");
    header.artist = QStringLiteral("Ada - Band");
    header.outputFolder = QStringLiteral("/music");
    header.physicalDrive = true;
    header.driveModel = QStringLiteral("ACME - READER");
    header.sampleOffset = offset;
    header.offsetSource = QStringLiteral("(saved)");
    header.format = QStringLiteral("flac");
    header.namingRule = QStringLiteral("{track}. {title}");
    return header;
}

} // namespace

TEST(RipLog, HeaderOfAPhysicalDrive)
{
    EXPECT_EQ(riplog::header(physicalHeader(6)), (QStringList{
                                                     rule,
                                                     "  TARVEL CD RIPPER  —  RIP START",
                                                     "  2026-01-02  03:04:05",
                                                     rule,
                                                     "Album  : Blue (Live) / Ada - Band",
                                                     "Output : /music",
                                                     "Drive  : ACME - READER",
                                                     "Read offset : +6  (saved)",
                                                     "Format : FLAC   Naming : {track}. {title}",
                                                     "Program: Tarvel CD Ripper v2.0.0 (build 20261006-1720)",
                                                     "─── Track log ──────────────────────",
                                                 }));
    EXPECT_EQ(rule.size(), 39);
}

TEST(RipLog, OffsetSigns)
{
    EXPECT_EQ(riplog::header(physicalHeader(0)).at(7), QStringLiteral("Read offset : 0  (saved)"));
    EXPECT_EQ(riplog::header(physicalHeader(1)).at(7), QStringLiteral("Read offset : +1  (saved)"));
    EXPECT_EQ(riplog::header(physicalHeader(-30)).at(7), QStringLiteral("Read offset : -30  (saved)"));
}

TEST(RipLog, UnknownDriveAndEmptyNames)
{
    riplog::Header header = physicalHeader(0);
    header.driveModel.clear();
    header.album.clear();
    header.artist.clear();
    EXPECT_EQ(riplog::header(header).at(4), QStringLiteral("Album  :  / "));
    EXPECT_EQ(riplog::header(header).at(6), QStringLiteral("Drive  : (unknown)"));
}

TEST(RipLog, OtherSourcesHaveOneLineForTheirPath)
{
    riplog::Header header = physicalHeader(6);
    header.physicalDrive = false;
    header.sourcePath = QStringLiteral("/discs/a.cue");
    const QStringList lines = riplog::header(header);
    EXPECT_EQ(lines.size(), 10);
    EXPECT_EQ(lines.at(6), QStringLiteral("Source : /discs/a.cue"));
    EXPECT_EQ(lines.at(7), QStringLiteral("Format : FLAC   Naming : {track}. {title}"));
}

TEST(RipLog, MissingSourceInBothLanguages)
{
    speak(2);
    EXPECT_EQ(riplog::missingSource(),
              (QStringList{rule, "  Error", rule, "Please select a source before ripping."}));
    speak(1);
    EXPECT_EQ(riplog::missingSource(),
              (QStringList{rule, "  エラー", rule, "選択可能なソースを選択しなければ実行できません。"}));
}

TEST(RipLog, SectorWarningsInBothLanguages)
{
    SectorResult sector;
    sector.lba = 4711;
    EXPECT_TRUE(riplog::sectorWarning(sector).isEmpty());
    sector.bad = true;
    speak(2);
    EXPECT_EQ(riplog::sectorWarning(sector), QStringLiteral("  ⚠ Could not confirm sector: LBA 4711"));
    speak(1);
    EXPECT_EQ(riplog::sectorWarning(sector),
              QStringLiteral("  ⚠ 読み直しても確定できなかったセクタ: LBA 4711"));
    sector.mismatch = true;
    EXPECT_EQ(riplog::sectorWarning(sector),
              QStringLiteral("  ⚠ クロスチェック不一致検出: LBA 4711（要注意セクタ）"));
    speak(2);
    EXPECT_EQ(riplog::sectorWarning(sector),
              QStringLiteral("  ⚠ Cross-check mismatch: LBA 4711 (suspect sector)"));
}

TEST(RipLog, TrackLines)
{
    EXPECT_EQ(riplog::trackStarted(3, QStringLiteral("100%1 %2")), QStringLiteral("  Track 03: 100%1 %2"));
    EXPECT_EQ(riplog::trackStarted(0, QStringLiteral("C2: on")), QStringLiteral("  Track 00: C2: on"));
    RipResult result;
    result.trackNumber = 12;
    result.errorSectors = noSamplesRead;
    EXPECT_EQ(riplog::trackDone(result), QStringLiteral("  Track 12: ◈ FAILED"));
    result.ok = true;
    result.errorSectors = 4;
    EXPECT_EQ(riplog::trackDone(result), QStringLiteral("  Track 12: ✦ saved  (errors:4)"));
    EXPECT_EQ(riplog::cover(true), QStringLiteral("  Track 00: Cover art: OK"));
    EXPECT_EQ(riplog::cover(false), QStringLiteral("  Track 00: Cover art: not found"));
}

TEST(RipLog, VerdictsByErrorsThenSuspects)
{
    EXPECT_EQ(riplog::discResult({300000, 0, 1}),
              (QStringList{"", "  Read Quality : 100.00%", "  Errors       : 0 sectors",
                           "  Suspect      : 1 sectors (damage detected, recovered by re-reading)",
                           "  Result  : Recovered  ◈", rule}));
    EXPECT_EQ(riplog::discResult({10, 1, 0}).at(4),
              QStringLiteral("  Result  : Some sectors could not be confirmed  ✕"));
    EXPECT_EQ(riplog::discResult({10, 1, 1}).at(4),
              QStringLiteral("  Result  : Some sectors could not be confirmed  ✕"));
    EXPECT_EQ(riplog::discResult({10, 0, 0}).at(4), QStringLiteral("  Result  : Perfect  ✦"));
    EXPECT_EQ(riplog::discSummary({10, 1, 2}),
              QStringLiteral("Read Quality : 70.00%\nErrors : 1 sectors\nSuspect Sectors : 2 sectors"));
}
