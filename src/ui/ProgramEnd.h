#pragma once

#include <memory>

class MainWindow;

/// Ends all that is under way, rips, lookups and verifications, and destroys the
/// window. What does not stop in time is left behind: the process ends under it.
/// For the end of the program, while the application still stands.
void endProgram(std::unique_ptr<MainWindow> window);
