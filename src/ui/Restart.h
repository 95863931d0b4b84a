#pragma once

#include "base/ServiceOverride.h"

#include <QString>

/// Starts a program that lives on without this one.
class ProgramStarter {
public:
    virtual ~ProgramStarter() = default;
    /// Without arguments or a working folder of its own. Whether it came to
    /// life is nobody's concern: the caller ends either way.
    virtual void start(const QString& program);
};

/// Puts another starter in place for its lifetime.
using ProgramStarterOverride = ServiceOverride<ProgramStarter>;

/// Starts this program anew and asks the running one to end.
void restartProgram();
