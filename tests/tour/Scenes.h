#pragma once

#include "tour/ContactSheet.h"

#include <QSize>

/// Brings the window and its dialogs into every state that a user meets, and
/// takes a picture of each.
///
/// @param language  1 Japanese, 2 English
/// @param size      of the window
QList<Shot> playScenes(int language, const QSize& size);
