// The program's own main, in a process of its own.

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class Start : public ::testing::Test {
protected:
    /// Where the program's settings lie on this platform, by its names.
    void store(const QByteArray& lines)
    {
        ASSERT_TRUE(QDir(home.path()).mkpath(QStringLiteral("VEDRANO")));
        QFile file(home.filePath(QStringLiteral("VEDRANO/Tarvel CD Ripper.conf")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(lines), lines.size());
    }

    /// Starts the program and reads what the probe says of it.
    QMap<QByteArray, QByteArray> start(const char* locale = "de_DE.UTF-8")
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"LANG", "LANGUAGE", "LC_MESSAGES", "LC_NUMERIC", "LC_CTYPE"})
            environment.remove(QLatin1String(name));
        environment.insert(QStringLiteral("LC_ALL"), QLatin1String(locale));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(TARVEL_START_PROBE), QStringList());
        EXPECT_TRUE(program.waitForFinished(60000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        QMap<QByteArray, QByteArray> said;
        for (const QByteArray& line : program.readAllStandardOutput().split('\n')) {
            const qsizetype colon = line.indexOf(": ");
            if (colon > 0)
                said[line.left(colon)] = line.mid(colon + 2);
        }
        return said;
    }

    QTemporaryDir home;
};

} // namespace

TEST_F(Start, NamesIconAndFontAreInForceWhenTheWindowShows)
{
    const auto said = start();
    EXPECT_NE(said["name at first"], "Tarvel CD Ripper");
    EXPECT_EQ(said["name"], "Tarvel CD Ripper");
    EXPECT_EQ(said["version"], "2.0.0");
    EXPECT_EQ(said["organisation"], "VEDRANO");
    EXPECT_EQ(said["window"], "Tarvel CD Ripper");
    EXPECT_EQ(said["icon"], "there");
    EXPECT_EQ(said["font"], "Segoe UI 9");
}

// Read under the program's names, which come first, and before the widgets, whose
// texts are made once.
TEST_F(Start, TheStoredLanguageIsThatOfTheFirstWindow)
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

TEST_F(Start, WithoutAStoredLanguageTheSystemDecides)
{
    EXPECT_EQ(start("ja_JP.UTF-8")["convert"], "⇄  ファイル変換");
    EXPECT_EQ(start("de_DE.UTF-8")["convert"], "⇄  Convert Files");
}

TEST_F(Start, TheStoredSettingsAreRead)
{
    store("[ui]\nlanguage=2\n[output]\ndefaultDir=/stored/folder\n");
    EXPECT_EQ(start()["output"], "/stored/folder");
}
