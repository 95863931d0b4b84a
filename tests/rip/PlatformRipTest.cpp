// A damaged disc ripped through the platform's own calls. What comes out stands in
// files beside this one, to which every platform is held: a platform cannot change
// what is read, written, said or sent to a drive.

#include "RunRecorder.h"
#include "support/LogCapture.h"
#include "support/PlatformDrive.h"
#include "support/SimulatedDrive.h"

#include <QCryptographicHash>
#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Command = SimulatedDrive::Command;

QString textOf(const Command& command)
{
    switch (command.kind) {
    case Command::Verify:
        return QStringLiteral("verify");
    case Command::Toc:
        return QStringLiteral("toc");
    case Command::Raw:
        return QStringLiteral("raw %1+%2").arg(command.lba).arg(command.count);
    case Command::SeekRead:
        return QStringLiteral("seek %1+%2").arg(command.lba).arg(command.count);
    case Command::RawWithC2:
        return QStringLiteral("c2 %1+%2").arg(command.lba).arg(command.count);
    case Command::Inquiry:
        return QStringLiteral("inquiry");
    case Command::ModeSense:
        return QStringLiteral("mode-sense");
    case Command::Sleep:
        return QStringLiteral("sleep %1").arg(command.lba);
    }
    return {};
}

/// In lines of a length that can be read.
QStringList commandLines(const QList<Command>& commands)
{
    constexpr qsizetype longest = 100;
    QStringList lines;
    QString line;
    for (const Command& command : commands) {
        const QString text = textOf(command);
        if (line.size() + text.size() > longest)
            lines.append(std::exchange(line, {}));
        line += (line.isEmpty() ? QStringLiteral("  ") : QStringLiteral(", ")) + text;
    }
    return lines << line;
}

QString lineOf(const SectorResult& record)
{
    const char* verdict = record.bad        ? "bad"
                          : record.mismatch ? "mismatch"
                          : record.clean    ? "clean"
                                            : "recovered";
    return QStringLiteral("  %1 %2, %3 re-reads, %4 C2 errors, %5 KiB/s")
        .arg(record.lba)
        .arg(QLatin1String(verdict))
        .arg(record.retries)
        .arg(record.c2Errors)
        .arg(record.speed);
}

QString lineOf(const RipResult& result)
{
    return QStringLiteral("  %1 %2, %3 errors, %4 suspects, checksums %5 %6")
        .arg(result.trackNumber)
        .arg(result.ok ? QLatin1String("ok") : QLatin1String("failed"))
        .arg(result.errorSectors)
        .arg(result.suspectSectors)
        .arg(result.crcV1, 8, 16, QLatin1Char('0'))
        .arg(result.crcV2, 8, 16, QLatin1Char('0'));
}

QStringList fileLines(const QString& folder)
{
    QStringList lines;
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
        const QByteArray content = contentOf(dir.filePath(name));
        lines.append(QStringLiteral("  %1, %2 bytes, SHA-256 ").arg(name).arg(content.size())
                     + QLatin1String(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex()));
    }
    return lines;
}

QStringList indented(QStringList lines)
{
    for (QString& line : lines)
        line.prepend(QStringLiteral("  "));
    return lines;
}

/// What the drive's own code says; the number of an error is the platform's, and so is
/// the way on which commands go out.
QStringList driveLines(const QStringList& said)
{
    static const QRegularExpression number(QStringLiteral("err= -?\\d+"));
    QStringList lines;
    for (QString line : said) {
        if (line.contains(QLatin1String("commands go through")))
            continue;
        if (line.contains(QLatin1String("CdDrive")) || line.startsWith(QLatin1String("[RipWorker]")))
            lines.append(line.replace(number, QStringLiteral("err= N")));
    }
    return lines;
}

QStringList withoutRemarks(const QByteArray& text)
{
    QStringList lines = QString::fromUtf8(text).split(u'\n');
    for (QString& line : lines)
        line.remove(u'\r');
    lines.removeIf([](const QString& line) { return line.isEmpty() || line.startsWith(u'#'); });
    return lines;
}

class PlatformRip : public ::testing::Test {
protected:
    PlatformRip()
    {
        disc.audio = makeAudio(400, 17);
        disc.tracks = {{0}, {180}, {360, true}};
        disc.readOffset = 6;
        disc.usb = true;
        disc.mechanism.cacheSectors = 60;
        disc.mechanism.seed = 5;
        disc.mechanism.faults = {
            SectorFault::flaky(30, 33, 0.5),     SectorFault::sticky(50, 50),
            SectorFault::unreadable(75, 76),     SectorFault::shortAnswer(110, 110, 0.6),
            SectorFault::hanging(200, 200, 0.4), SectorFault::silentlyFlaky(250, 251, 0.5),
            SectorFault::deadSpot(300, 301),     SectorFault::unreadable(359, 359, 0.7),
        };
    }

    /// All that a rip lets be seen.
    QStringList rip()
    {
        const PlatformDrive machine(disc);
        const QTemporaryDir folder;
        RunRecorder run;
        run.drive.setReadOffset(6);
        QStringList said;
        {
            const LogCapture log;
            run.ripDisc(folder.path(), 6);
            said = driveLines(log.lines());
        }
        expectTheTruthBesideTheDamage(folder.path());
        QStringList lines{QStringLiteral("files")};
        lines += fileLines(folder.path());
        lines += QStringLiteral("tracks");
        for (const RipResult& result : std::as_const(run.results))
            lines += lineOf(result);
        lines += QStringLiteral("sectors that were not clean");
        for (const SectorResult& record : std::as_const(run.sectors)) {
            if (!record.clean)
                lines += lineOf(record);
        }
        lines += QStringList{QStringLiteral("log and status")} + indented(run.said);
        lines += QStringList{QStringLiteral("debug log")} + indented(said);
        lines +=
            QStringLiteral("milliseconds on the drive's clock %1").arg(disc.nowNanoseconds() / 1'000'000);
        lines += QStringList{QStringLiteral("commands")} + commandLines(disc.commands);
        return lines;
    }

    // A wrong sector of the drive's lies across two of the disc's.
    void expectTheTruthBesideTheDamage(const QString& folder) const
    {
        const QByteArray audio = audioOfWave(folder + QStringLiteral("/01. Track 1.wav"))
                                 + audioOfWave(folder + QStringLiteral("/02. Track 2.wav"));
        ASSERT_EQ(audio.size(), 360 * RAW_SECTOR_BYTES);
        int right = 0;
        for (quint32 lba = 0; lba < 360; ++lba) {
            const bool damaged = std::ranges::any_of(disc.mechanism.faults, [lba](const SectorFault& fault) {
                return fault.covers(lba) || fault.covers(lba + 1);
            });
            const bool equal =
                audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES) == disc.truth(lba);
            EXPECT_TRUE(equal || damaged) << lba;
            right += equal ? 1 : 0;
        }
        EXPECT_GE(right, 335);
    }

    /// Holds the rip against a file beside this one. With TARVEL_EXPECTED_RIPS in
    /// the environment it is written into the folder of that name instead.
    void expectRipAsIn(const QString& name)
    {
        const QStringList lines = rip();
        const QString made = qEnvironmentVariable("TARVEL_EXPECTED_RIPS");
        if (!made.isEmpty()) {
            writeFile(made, name, lines.join(u'\n').toUtf8() + '\n');
            return;
        }
        const QStringList expected = withoutRemarks(contentOf(QStringLiteral(TARVEL_RIP_TESTS "/") + name));
        for (qsizetype i = 0; i < std::max(lines.size(), expected.size()); ++i)
            ASSERT_EQ(lines.value(i), expected.value(i)) << "line " << i + 1 << " without the remarks";
    }

    SimulatedDrive disc;
};

} // namespace

TEST_F(PlatformRip, WithErrorPointersIsTheSameOnEveryPlatform)
{
    expectRipAsIn(QStringLiteral("PlatformRipC2.txt"));
}

TEST_F(PlatformRip, InCompareModeIsTheSameOnEveryPlatform)
{
    disc.c2Available = false;
    expectRipAsIn(QStringLiteral("PlatformRipCompare.txt"));
}
