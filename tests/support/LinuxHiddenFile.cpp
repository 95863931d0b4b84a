#include "support/HiddenFile.h"

void hideFile(const QString&) {}
