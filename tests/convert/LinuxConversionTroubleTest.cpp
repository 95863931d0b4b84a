// Links, pipes and names that are no text, beside and in the way of a conversion.

#include "convert/ConversionStage.h"

#include <sys/stat.h>

class LinuxConversionTrouble : public ConversionStage {};

TEST_F(LinuxConversionTrouble, LinksToFilesAreTakenLinksToAnythingElseAreNot)
{
    const QString elsewhere =
        writeFile(place.top(), QStringLiteral("elsewhere.bin"), wrapInWave(makeAudio(1, 4)));
    const auto link = [this](const QString& target, const char* name) {
        ASSERT_TRUE(QFile::link(target, place.source() + QLatin1Char('/') + QLatin1String(name)));
    };
    link(elsewhere, "to a file.wav");
    link(place.top() + QStringLiteral("/nothing"), "to nothing.wav");
    link(precious(), "to a folder.wav");
    const QByteArray pipe = QFile::encodeName(place.source() + QStringLiteral("/pipe.wav"));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    link(place.source() + QStringLiteral("/pipe.wav"), "to a pipe.wav");
    link(QStringLiteral("loop.wav"), "loop.wav");

    EXPECT_EQ(run(), (Counts{1, 0, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/to a file.flac"}));
    EXPECT_EQ(contentOf(elsewhere), wrapInWave(makeAudio(1, 4)));
}

TEST_F(LinuxConversionTrouble, ANameThatIsNoTextFailsAndIsCounted)
{
    place.addWave(QStringLiteral("fine.wav"));
    for (const QByteArray name : {"b\xff.wav", "b\xfe.wav"}) {
        const QByteArray path = QFile::encodeName(place.source()) + '/' + name;
        FILE* file = std::fopen(path.constData(), "wb");
        ASSERT_NE(file, nullptr);
        const QByteArray wave = wrapInWave(makeAudio(1, 1));
        std::fwrite(wave.constData(), 1, static_cast<size_t>(wave.size()), file);
        std::fclose(file);
    }
    EXPECT_EQ(run(), (Counts{1, 2, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/fine.flac"}));
}

TEST_F(LinuxConversionTrouble, ALinkInThePlaceOfTheRunFolderStays)
{
    place.add(QStringLiteral("1.wav"), "broken");
    QDir().mkpath(place.output());
    ASSERT_TRUE(QFile::link(place.top() + QStringLiteral("/nothing"), place.runFolder()));
    EXPECT_EQ(run(), (Counts{0, 1, 0}));
    EXPECT_TRUE(QFileInfo(place.runFolder()).isSymLink());
    EXPECT_FALSE(QFileInfo::exists(place.top() + QStringLiteral("/nothing")));

    ASSERT_TRUE(QFile::remove(place.runFolder()));
    ASSERT_TRUE(QFile::link(precious(), place.runFolder()));
    EXPECT_EQ(run(), (Counts{0, 1, 0}));
    EXPECT_EQ(FolderOfAudio::below(precious()), QStringList{"letter.txt"});
}

TEST_F(LinuxConversionTrouble, RemovingTheRunFolderFollowsNoLink)
{
    place.add(QStringLiteral("1.wav"), "broken");
    const QString folder = precious();
    bool linked = false;
    EXPECT_EQ(run([&](int) { linked = QFile::link(folder, place.runFolder() + QStringLiteral("/inside")); }),
              (Counts{0, 1, 0}));
    EXPECT_TRUE(linked);
    EXPECT_FALSE(QFileInfo::exists(place.runFolder()));
    EXPECT_EQ(FolderOfAudio::below(folder), QStringList{"letter.txt"});
}

TEST_F(LinuxConversionTrouble, ALinkThatTakesThePlaceOfTheRunFolderStays)
{
    place.add(QStringLiteral("1.wav"), "broken");
    const QString folder = precious();
    EXPECT_EQ(run([&](int) {
                  QDir().rmdir(place.runFolder());
                  QFile::link(folder, place.runFolder());
              }),
              (Counts{0, 1, 0}));
    EXPECT_EQ(QFileInfo(place.runFolder()).symLinkTarget(), folder);
    EXPECT_EQ(FolderOfAudio::below(folder), QStringList{"letter.txt"});
}
