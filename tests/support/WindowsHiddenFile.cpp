#include "support/HiddenFile.h"

#include <windows.h>

void hideFile(const QString& path)
{
    SetFileAttributesW(path.toStdWString().c_str(), FILE_ATTRIBUTE_HIDDEN);
}
