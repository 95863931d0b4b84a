// Loads the language as a start of the program does, with a mode in the settings
// and whatever locale the environment names, and says which one it is.

#include "base/Language.h"
#include "base/Settings.h"

#include <QCoreApplication>
#include <QSettings>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("TarvelTests"));
    QCoreApplication::setApplicationName(QStringLiteral("LanguageProbe"));
    QSettings().setValue(QLatin1String(settings::language), QString::fromLatin1(argv[1]).toInt());
    loadLanguage();
    std::printf("%d %s %d\n", languageMode(), pickLang("ja", "en").toUtf8().constData(),
                isJapanese() ? 1 : 0);
    return 0;
}
