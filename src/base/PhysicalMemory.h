#pragma once

#include <QtGlobal>

/// Bytes of memory that the machine has, or that a test pretends it has. The
/// largest number where the system does not tell.
quint64 physicalMemoryBytes();

/// What the machine has from now on. 0 gives it back its own.
void pretendPhysicalMemory(quint64 bytes);

/// What the system tells, or 0: the part that each platform has its own of.
quint64 askForPhysicalMemory();
