#pragma once

#include <QString>

/// The one dark look of the program. Rules select widgets by object name, which
/// acts as a style class; dialogs inherit the sheet of the window.
QString styleSheetText();

/// What the Settings dialog adds to the window's sheet.
QString settingsStyleSheetText();
