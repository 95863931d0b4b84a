#include "disc/CdDrive.h"
#include "support/DiscMaker.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace {

QByteArray mutated(QByteArray bytes, std::mt19937& random)
{
    const int changes = 1 + static_cast<int>(random() % 6);
    for (int i = 0; i < changes && !bytes.isEmpty(); ++i) {
        const auto place = static_cast<qsizetype>(random() % static_cast<quint32>(bytes.size()));
        switch (random() % 4) {
        case 0:
            bytes[place] = static_cast<char>(random());
            break;
        case 1:
            bytes.truncate(place);
            break;
        case 2:
            bytes.insert(place, bytes.mid(place / 2, 40));
            break;
        default:
            bytes.replace(place, 1, QByteArray::number(random()));
        }
    }
    return bytes;
}

// Each damage has files of its own: writing over a file makes some file systems
// flush it, which takes a hundred times as long.
constexpr int damages = 1000;

constexpr char sheet[] = "PERFORMER \"A\"\nTITLE \"B\"\nREM DATE 2001\nFILE \"disc.wav\" WAVE\n"
                         "TRACK 01 AUDIO\nTITLE \"One\"\nINDEX 01 00:00:00\n"
                         "TRACK 02 AUDIO\nINDEX 00 00:00:01\nINDEX 01 00:00:02\n";

/// What the damaged sheets of a test led to.
struct Outcome {
    int opened = 0;  ///< sheets
    int sectors = 0; ///< that were read whole
};

// What any sheet and image may lead to: tracks whose reads give whole sectors
// or nothing.
void expectSound(CdDrive& drive, const QString& cue, Outcome& outcome)
{
    if (!drive.openCue(cue))
        return;
    ++outcome.opened;
    for (const TrackInfo& track : drive.readToc().tracks) {
        for (const quint32 lba : {track.startLba, track.endLba}) {
            const QByteArray sector = drive.readSector(lba);
            EXPECT_TRUE(sector.isEmpty() || sector.size() == RAW_SECTOR_BYTES);
            outcome.sectors += sector.isEmpty() ? 0 : 1;
        }
    }
}

// The damage is small enough to let many sheets through, and large enough to
// keep sectors back that the undamaged one leads to.
void expectUsefulDamage(const Outcome& outcome, const Outcome& undamaged)
{
    EXPECT_EQ(undamaged.opened, 1);
    EXPECT_GT(outcome.opened, damages / 4);
    EXPECT_GT(outcome.sectors, damages / 4);
    EXPECT_LT(outcome.sectors, damages * undamaged.sectors);
}

} // namespace

TEST(CueMutation, DamagedSheetsDoNoHarm)
{
    QTemporaryDir folder;
    writeFile(folder.path(), QStringLiteral("disc.wav"), wrapInWave(makeAudio(4, 1)));
    std::mt19937 random(20);
    CdDrive drive;
    Outcome undamaged;
    expectSound(drive, writeFile(folder.path(), QStringLiteral("sound.cue"), sheet), undamaged);
    EXPECT_EQ(undamaged.sectors, 4) << "the first and the last of each track";
    Outcome outcome;
    for (int i = 0; i < damages; ++i) {
        const QString cue = writeFile(folder.path(), QStringLiteral("%1.cue").arg(i), mutated(sheet, random));
        expectSound(drive, cue, outcome);
    }
    expectUsefulDamage(outcome, undamaged);
}

TEST(CueMutation, DamagedWaveHeadersDoNoHarm)
{
    QTemporaryDir folder;
    const QByteArray image = wrapInWave(makeAudio(1, 1), QByteArray("LIST\x04\0\0\0INFO", 12));
    std::mt19937 random(21);
    CdDrive drive;
    Outcome undamaged;
    writeFile(folder.path(), QStringLiteral("disc.wav"), image);
    expectSound(drive, writeFile(folder.path(), QStringLiteral("sound.cue"), sheet), undamaged);
    Outcome outcome;
    for (int i = 0; i < damages; ++i) {
        const QString wave = QStringLiteral("%1.wav").arg(i);
        writeFile(folder.path(), wave, mutated(image.left(80), random) + image.mid(80));
        const QByteArray text = QByteArray(sheet).replace("disc.wav", wave.toLatin1());
        expectSound(drive, writeFile(folder.path(), QStringLiteral("%1.cue").arg(i), text), outcome);
    }
    expectUsefulDamage(outcome, undamaged);
}
