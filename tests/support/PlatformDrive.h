#pragma once

#include <memory>

class SimulatedDrive;

/// Puts a simulated drive under the machine's own platform for its lifetime: it is
/// listed, opened and commanded through the operating system's calls, each played by
/// a stand-in. Time is the simulated drive's.
class PlatformDrive {
public:
    /// @param drive  as it is from now on: what the system tells of it is settled here
    explicit PlatformDrive(SimulatedDrive& drive);
    ~PlatformDrive();
    PlatformDrive(const PlatformDrive&) = delete;
    PlatformDrive& operator=(const PlatformDrive&) = delete;

private:
    class Machine;
    std::unique_ptr<Machine> machine;
};
