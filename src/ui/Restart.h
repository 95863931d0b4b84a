#pragma once

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
class ProgramStarterOverride {
public:
    explicit ProgramStarterOverride(ProgramStarter& replacement);
    ~ProgramStarterOverride();
    ProgramStarterOverride(const ProgramStarterOverride&) = delete;
    ProgramStarterOverride& operator=(const ProgramStarterOverride&) = delete;

private:
    ProgramStarter* previous;
};

/// Starts this program anew and asks the running one to end.
void restartProgram();
