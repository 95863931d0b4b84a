#pragma once

#include <chrono>

/// What a process may take before it is ended, and what it took.
namespace processlimits {

/// Lets this process have 2 GiB of memory at most, where the system can. Under the
/// address sanitizer it is the sanitizer's options that say so.
void limitMemory();

/// Ends this process with an exit code after so much work from now on: not the
/// time that other programs take. Zero takes it back.
void limitWork(std::chrono::seconds most, int exitCode);

/// The most that was allocated at a time, also where it was never touched.
long mostAllocatedKiB();

} // namespace processlimits
