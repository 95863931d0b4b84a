#include "base/Language.h"

#include "base/Settings.h"

#include <QLocale>
#include <QSettings>

namespace {

int storedMode = 0;
bool japanese = false;

} // namespace

void loadLanguage()
{
    const int mode = QSettings().value(QLatin1String(settings::language), 0).toInt();
    storedMode = mode >= 0 && mode <= 2 ? mode : 0;
    japanese = storedMode == 1 || (storedMode == 0 && QLocale::system().language() == QLocale::Japanese);
}

bool isJapanese()
{
    return japanese;
}

int languageMode()
{
    return storedMode;
}

void setLanguageMode(int mode)
{
    storedMode = mode;
    QSettings().setValue(QLatin1String(settings::language), mode);
}

QString pickLang(const char* ja, const char* en)
{
    return QString::fromUtf8(isJapanese() ? ja : en);
}
