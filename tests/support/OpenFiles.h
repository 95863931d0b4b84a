#pragma once

#include <QtGlobal>

/// How many files, or what the system counts as such, this process has open.
qsizetype openFileCount();
