// What Windows takes as a name, and what it would take for something else.

#include "base/FittingName.h"

#include "base/FileNames.h"
#include "base/FilePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>

namespace {

const QString family = QStringLiteral("👨‍👩‍👧"); // 8 units that are one character
const QString flac = QStringLiteral(".flac");

QString fileName(const QString& name, const QString& extension = flac)
{
    return fittingPath(QStringLiteral("C:/Music/") + name, extension).mid(9);
}

} // namespace

TEST(WindowsFileNames, ADevicesNameIsMadeOrdinaryWhateverItsExtension)
{
    QStringList devices{QStringLiteral("CON"), QStringLiteral("PRN"),    QStringLiteral("AUX"),
                        QStringLiteral("NUL"), QStringLiteral("CONIN$"), QStringLiteral("CONOUT$")};
    for (const char16_t digit : u"0123456789¹²³") {
        if (digit != 0) {
            devices.append(QStringLiteral("COM") + digit);
            devices.append(QStringLiteral("LPT") + digit);
        }
    }
    ASSERT_EQ(devices.size(), 6 + 2 * 13);
    for (const QString& device : std::as_const(devices)) {
        EXPECT_EQ(fittingName(device), device + u'_');
        EXPECT_EQ(fittingName(device.toLower()), device.toLower() + u'_');
        EXPECT_EQ(fittingName(device + QStringLiteral(".txt")), device + QStringLiteral("_.txt"));
        EXPECT_EQ(fittingName(device + QStringLiteral(".tar.gz")), device + QStringLiteral("_.tar.gz"));
        EXPECT_EQ(fittingName(device + QStringLiteral("  .txt")), device + QStringLiteral("_  .txt"));
        EXPECT_EQ(fittingName(device + QStringLiteral(" . ")), device + u'_');
        EXPECT_EQ(fileName(device), device + QStringLiteral("_.flac"));
        EXPECT_EQ(fileName(device + QStringLiteral(". Live")), device + QStringLiteral("_. Live.flac"));
    }
}

TEST(WindowsFileNames, ANameThatOnlyBeginsOrEndsLikeADevicesStays)
{
    for (const char16_t* name : {u"CONCERT", u"CON 1", u"A CON", u"COM10", u"COM", u"LPTX", u"NULL", u"AUX-1",
                                 u"COM①", u"Nullarbor", u".NUL", u"conin", u"CON_"}) {
        const QString text = QString::fromUtf16(name);
        EXPECT_EQ(fittingName(text), text);
        EXPECT_EQ(fileName(text), text + flac);
    }
}

TEST(WindowsFileNames, DotsAndBlanksAtTheEndGo)
{
    EXPECT_EQ(fittingName(QStringLiteral("Vol. ")), QStringLiteral("Vol"));
    EXPECT_EQ(fittingName(QStringLiteral("Vol...")), QStringLiteral("Vol"));
    EXPECT_EQ(fittingName(QStringLiteral("Vol . . ")), QStringLiteral("Vol"));
    EXPECT_EQ(fittingName(QStringLiteral(" .Vol. 2")), QStringLiteral(" .Vol. 2")) << "elsewhere they stay";
    EXPECT_EQ(fittingName(QStringLiteral("...")), QString());
    EXPECT_EQ(fileName(QStringLiteral("Vol. ")), QStringLiteral("Vol. .flac")) << "the extension ends it";
    EXPECT_EQ(fileName(QStringLiteral("Vol"), QString()), QStringLiteral("Vol"));
    EXPECT_EQ(fileName(QStringLiteral("Vol. "), QString()), QStringLiteral("Vol"));
}

// A name that ends there once it has been cut to the room.
TEST(WindowsFileNames, ACutNeitherLeavesDotsNorMakesADevice)
{
    EXPECT_EQ(fittingName(QString(250, u'a') + QString(10, u'.') + u'b'), QString(250, u'a'));
    EXPECT_EQ(fittingName(QStringLiteral("CON") + QString(300, u' ') + u'b'), QStringLiteral("CON_"));
    const QString name = fileName(QStringLiteral("CON") + QString(300, u' ') + u'b');
    EXPECT_EQ(name, QStringLiteral("CON_") + QString(255 - 4 - 5, u' ') + flac);
    EXPECT_EQ(name.size(), 255);
}

TEST(WindowsFileNames, ControlCharactersGo)
{
    for (char16_t unit = 0; unit < 0x20; ++unit) {
        EXPECT_EQ(fittingName(QStringLiteral("a") + QChar(unit) + u'b'), QStringLiteral("ab")) << int(unit);
        EXPECT_EQ(fileName(QStringLiteral("NU") + QChar(unit) + u'L'), QStringLiteral("NUL_.flac"))
            << int(unit) << ": what is left may be a device";
    }
    EXPECT_EQ(fittingName(QStringLiteral("a\u007F\u0080b")), QStringLiteral("a\u007F\u0080b"));
}

TEST(WindowsFileNames, ANameHas255UnitsOfUtf16)
{
    EXPECT_EQ(nameLength(QStringLiteral("aあ")), 2);
    EXPECT_EQ(nameLength(QStringLiteral("🎸")), 2);
    EXPECT_EQ(fittingName(QString(300, QChar(u'あ'))), QString(255, QChar(u'あ')));
    EXPECT_EQ(fileName(QString(300, QChar(u'あ'))), QString(250, QChar(u'あ')) + flac);
    EXPECT_EQ(fileName(QString(250, QChar(u'あ'))), QString(250, QChar(u'あ')) + flac) << "it fits";
}

TEST(WindowsFileNames, AFolderOnTheNetworkStaysAsItIs)
{
    EXPECT_EQ(fittingPath(QStringLiteral("//server/share/NUL"), flac),
              QStringLiteral("//server/share/NUL_.flac"));
    EXPECT_EQ(fromPath(toPath(QStringLiteral("//server/Aあ/x"))), QStringLiteral("//server/Aあ/x"));
}

TEST(WindowsFileNames, ACharacterOfSeveralUnitsIsNotCut)
{
    const QString guitars = QStringLiteral("🎸").repeated(200);
    EXPECT_EQ(fittingName(guitars), guitars.left(254)) << "127 of two units";
    EXPECT_EQ(fittingName(QString(254, u'a') + QStringLiteral("🎸")), QString(254, u'a'));
    EXPECT_EQ(fittingName(QString(253, u'a') + QStringLiteral("🎸")),
              QString(253, u'a') + QStringLiteral("🎸"));
    EXPECT_EQ(family.size(), 8);
    EXPECT_EQ(fittingName(family.repeated(40)), family.repeated(31)) << "31 * 8 = 248";
    EXPECT_EQ(fileName(family.repeated(40)), family.repeated(31) + flac) << "of 250";
    // Letters with an accent of their own, of two units each.
    const QString accented = QStringLiteral("e\u0301").repeated(200);
    EXPECT_EQ(fittingName(accented), accented.left(254));
    EXPECT_EQ(fittingName(QString(254, u'a') + QStringLiteral("e\u0301")), QString(254, u'a'));
}

TEST(WindowsFileNames, TheNameMadeIsAFileOfTheFolder)
{
    const QTemporaryDir folder;
    for (const char16_t* name : {u"NUL", u"con.tar", u"COM1 ", u"Vol. ", u"テスト", u"a\u0007b"}) {
        const QString path = fittingPath(folder.filePath(QString::fromUtf16(name)), flac);
        {
            std::ofstream file(toPath(path), std::ios::binary);
            file << "sound";
        }
        EXPECT_EQ(QFileInfo(path).size(), 5) << path.toStdString();
        EXPECT_TRUE(QDir(folder.path()).entryList().contains(QFileInfo(path).fileName()));
    }
}

// The western code page has none of these characters.
TEST(WindowsFileNames, AJapanesePathIsAFileWhateverTheCodePage)
{
    const QString name = QStringLiteral("東京/01. 夜のテスト 🎸");
    ASSERT_NE(QFile::decodeName(QFile::encodeName(name)), name);
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("東京")));
    const QString path = fittingPath(folder.filePath(name), flac);
    {
        std::ofstream file(toPath(path), std::ios::binary);
        file << "sound";
    }
    EXPECT_EQ(QDir(folder.filePath(QStringLiteral("東京"))).entryList(QDir::Files),
              QStringList{QStringLiteral("01. 夜のテスト 🎸.flac")});
    EXPECT_EQ(fromPath(toPath(path)), path);
    EXPECT_EQ(utf8Path(toPath(path)), path.toStdString());
}

TEST(WindowsFileNames, APathBeyond260UnitsIsAFile)
{
    const QTemporaryDir folder;
    const QString deep = folder.filePath(QString(200, QChar(u'あ')) + u'/' + QString(200, u'b'));
    ASSERT_TRUE(QDir().mkpath(deep));
    const QString path = fittingPath(deep + u'/' + QString(300, u'c'), flac);
    EXPECT_GT(path.size(), 650);
    {
        std::ofstream file(toPath(path), std::ios::binary);
        file << "sound";
    }
    EXPECT_EQ(QFileInfo(path).size(), 5);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "sound");
}
