#pragma once

#include <QString>

/// Has the system hide a file whose name begins with a dot, where that alone does not.
void hideFile(const QString& path);
