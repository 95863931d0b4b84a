#pragma once

#include "rip/RipTypes.h"

#include <QString>

/// What a fresh process does for one measured run. The result line on stdout is
/// "processor seconds, wall seconds, longest stall in seconds" of the rip itself,
/// without the start of the program. Both return the exit code.

/// The worker on the calling thread.
int ripWithWorker(int argc, char** argv, const QString& cue, OutputFormat format, const QString& folder);

/// The worker behind the window, in the window's event loop.
/// @param format       one that the window offers
/// @param watchStalls  a timer of one millisecond runs along and costs time itself
int ripThroughWindow(int argc, char** argv, const QString& cue, OutputFormat format, const QString& folder,
                     bool watchStalls);
