// What a start takes from the file of the settings and from the environment.

#include "ui/StartStage.h"

class LinuxStart : public StartStage {
protected:
    /// Where the program's settings lie on this platform, by its names.
    void store(const QByteArray& lines)
    {
        ASSERT_TRUE(QDir(home.path()).mkpath(QStringLiteral("VEDRANO")));
        QFile file(home.filePath(QStringLiteral("VEDRANO/Tarvel CD Ripper.conf")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(lines), lines.size());
    }
};

// Read under the program's names, which come first, and before the widgets, whose
// texts are made once.
TEST_F(LinuxStart, TheStoredLanguageIsThatOfTheFirstWindow)
{
    store("[ui]\nlanguage=1\n");
    auto said = start("de_DE.UTF-8");
    EXPECT_EQ(said["convert"], "⇄  ファイル変換");
    EXPECT_EQ(said["heading"], "ソースを選択してください");
    store("[ui]\nlanguage=2\n");
    said = start("ja_JP.UTF-8");
    EXPECT_EQ(said["convert"], "⇄  Convert Files");
    EXPECT_EQ(said["heading"], "Select a source");
}

TEST_F(LinuxStart, WithoutAStoredLanguageTheSystemDecides)
{
    EXPECT_EQ(start("ja_JP.UTF-8")["convert"], "⇄  ファイル変換");
    EXPECT_EQ(start("de_DE.UTF-8")["convert"], "⇄  Convert Files");
}

TEST_F(LinuxStart, TheStoredSettingsAreRead)
{
    store("[ui]\nlanguage=2\n[output]\ndefaultDir=/stored/folder\n");
    EXPECT_EQ(start()["output"], "/stored/folder");
}
