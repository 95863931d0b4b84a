#pragma once

#include <QString>

/// The language of every message: English or Japanese, fixed for the life of
/// the process by loadLanguage. Readable from any thread.

/// Reads "ui/language" from the settings. Called once from main, after the
/// organisation and application names are set and before any widget exists.
void loadLanguage();

/// True when Japanese texts are in force; false until loadLanguage has run.
bool isJapanese();

/// The user's choice: 0 follows the system, 1 Japanese, 2 English.
int languageMode();

/// Stores the choice in memory and in the settings. The texts of this process
/// stay as they are; the next start follows the choice.
void setLanguageMode(int mode);

/// Picks one of two UTF-8 texts by the language in force.
QString pickLang(const char* ja, const char* en);
