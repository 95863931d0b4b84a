#pragma once

#include <QString>

/// Gives this process and its children a home of their own, off the bus and off
/// the screen; before the application object is made.
void keepSurroundingsQuiet(const QString& home);

/// Drops the debug log, which costs more than what is measured.
void dropDebugLog();
