#include "ui/RipLog.h"

#include "base/Language.h"
#include "disc/DiscModel.h"
#include "rip/OutputNaming.h"
#include "rip/RipTypes.h"
#include "ui/ProgramInfo.h"
#include "ui/RipCounters.h"

namespace riplog {

QString doubleRule()
{
    return QString(39, QChar(0x2550));
}

QStringList missingSource()
{
    return {doubleRule(), pickLang("  エラー", "  Error"), doubleRule(),
            pickLang("選択可能なソースを選択しなければ実行できません。",
                     "Please select a source before ripping.")};
}

QStringList header(const Header& rip)
{
    QStringList lines{
        doubleRule(),
        QStringLiteral("  TARVEL CD RIPPER  —  RIP START"),
        QStringLiteral("  ") + rip.startTime,
        doubleRule(),
        QStringLiteral("Album  : ") + rip.album + QStringLiteral(" / ") + rip.artist,
        QStringLiteral("Output : ") + rip.outputFolder,
    };
    if (rip.physicalDrive) {
        lines << QStringLiteral("Drive  : ")
                     + (rip.driveModel.isEmpty() ? QStringLiteral("(unknown)") : rip.driveModel)
              << QStringLiteral("Read offset : %1%2  %3")
                     .arg(rip.sampleOffset >= 1 ? QStringLiteral("+") : QString(),
                          QString::number(rip.sampleOffset), rip.offsetSource);
    } else {
        lines << QStringLiteral("Source : ") + rip.sourcePath;
    }
    lines << QStringLiteral("Format : ") + rip.format.toUpper() + QStringLiteral("   Naming : ")
                 + rip.namingRule
          << QStringLiteral("Program: %1 v%2")
                 .arg(QLatin1String(programinfo::name), QLatin1String(programinfo::buildLabel))
          << QStringLiteral("─── Track log ──────────────────────");
    return lines;
}

QString cover(bool found)
{
    return QStringLiteral("  Track 00: Cover art: ")
           + (found ? QStringLiteral("OK") : QStringLiteral("not found"));
}

QString trackStarted(int number, const QString& title)
{
    return QStringLiteral("  Track %1: %2").arg(twoDigits(number), title);
}

QString trackDone(const RipResult& result)
{
    const QString number = twoDigits(result.trackNumber);
    return result.ok ? QStringLiteral("  Track %1: ✦ saved  (errors:%2)")
                           .arg(number, QString::number(result.errorSectors))
                     : QStringLiteral("  Track %1: ◈ FAILED").arg(number);
}

QString sectorWarning(const SectorResult& sector)
{
    if (sector.mismatch)
        return pickLang("  ⚠ クロスチェック不一致検出: LBA %1（要注意セクタ）",
                        "  ⚠ Cross-check mismatch: LBA %1 (suspect sector)")
            .arg(sector.lba);
    if (sector.bad)
        return pickLang("  ⚠ 読み直しても確定できなかったセクタ: LBA %1",
                        "  ⚠ Could not confirm sector: LBA %1")
            .arg(sector.lba);
    return {};
}

QStringList discResult(const RipCounters& counters)
{
    const auto verdict = [&] {
        if (counters.errors >= 1)
            return QStringLiteral("  Result  : Some sectors could not be confirmed  ✕");
        return counters.suspects != 0 ? QStringLiteral("  Result  : Recovered  ◈")
                                      : QStringLiteral("  Result  : Perfect  ✦");
    };
    return {QString(),
            QStringLiteral("  Read Quality : %1%").arg(counters.readQualityText()),
            QStringLiteral("  Errors       : %1 sectors").arg(counters.errors),
            QStringLiteral("  Suspect      : %1 sectors (damage detected, recovered by re-reading)")
                .arg(counters.suspects),
            verdict(),
            doubleRule()};
}

QString discSummary(const RipCounters& counters)
{
    return QStringLiteral("Read Quality : %1%\nErrors : %2 sectors\nSuspect Sectors : %3 sectors")
        .arg(counters.readQualityText(), QString::number(counters.errors),
             QString::number(counters.suspects));
}

QStringList audioFileResult()
{
    return {QString(),
            pickLang("  ※ 音声ファイルからの変換のため、Read Quality等の読み取り品質チェックは行われません",
                     "  * Converted from an audio file, so read-quality checks such as Read Quality are not "
                     "performed"),
            pickLang("  Result  : 変換完了  ✦", "  Result  : Converted  ✦"), doubleRule()};
}

} // namespace riplog
