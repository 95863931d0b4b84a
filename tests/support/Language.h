#pragma once

#include "base/Language.h"
#include "base/Settings.h"

#include <QSettings>
#include <QString>

#include <gtest/gtest.h>

#include <string>

/// Puts a language in force as a start of the program would: 1 Japanese, 2 English.
inline void speak(int languageMode)
{
    QSettings().setValue(QLatin1String(settings::language), languageMode);
    loadLanguage();
}

/// The one of two UTF-8 texts that belongs to a language mode.
inline QString textIn(int languageMode, const char* ja, const char* en)
{
    return QString::fromUtf8(languageMode == 1 ? ja : en);
}

/// The modes for tests that are run in both languages.
inline const auto bothLanguages = ::testing::Values(1, 2);

inline std::string nameOfLanguage(const ::testing::TestParamInfo<int>& instance)
{
    return instance.param == 1 ? "InJapanese" : "InEnglish";
}
