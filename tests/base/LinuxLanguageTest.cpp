// Which language the environment asks for.

#include "support/Language.h"
#include "support/ProcessLocale.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace {

/// What a start of its own makes of a stored mode where the environment names a
/// locale: the mode in force, the text of the pair "ja", "en", and the flag.
QByteArray startedWith(int stored, const char* locale)
{
    QProcess probe;
    probe.setProcessEnvironment(environmentOfLocale(locale));
    probe.start(QStringLiteral(TARVEL_LANGUAGE_PROBE), {QString::number(stored)});
    if (!probe.waitForFinished(60000) || probe.exitCode() != 0)
        return "no answer: " + probe.readAllStandardError();
    return probe.readAllStandardOutput().trimmed();
}

} // namespace

TEST(LinuxLanguage, AutomaticFollowsTheSystem)
{
    EXPECT_EQ(startedWith(0, "ja_JP.UTF-8"), "0 ja 1");
    EXPECT_EQ(startedWith(0, "de_DE.UTF-8"), "0 en 0");
    EXPECT_EQ(startedWith(0, "en_US.UTF-8"), "0 en 0");
    EXPECT_EQ(startedWith(0, "C"), "0 en 0");
}

TEST(LinuxLanguage, AChoiceStandsAboveTheSystem)
{
    EXPECT_EQ(startedWith(1, "de_DE.UTF-8"), "1 ja 1");
    EXPECT_EQ(startedWith(2, "ja_JP.UTF-8"), "2 en 0");
}

TEST(LinuxLanguage, ModeOutOfRangeCountsAsAutomaticAndStaysInTheStore)
{
    for (const int mode : {7, -1, 3}) {
        EXPECT_EQ(startedWith(mode, "ja_JP.UTF-8"), "0 ja 1") << mode;
        EXPECT_EQ(startedWith(mode, "de_DE.UTF-8"), "0 en 0") << mode;
        speak(mode);
        EXPECT_EQ(languageMode(), 0);
        EXPECT_EQ(QSettings().value(QLatin1String(settings::language)).toInt(), mode);
    }
}
