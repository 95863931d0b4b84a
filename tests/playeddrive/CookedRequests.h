#pragma once

struct SimulatedDisc;

/// The requests of the kernel's CD-ROM and SCSI drivers that are not SG_IO.
class CookedRequests {
public:
    /// @param transferLimit  bytes of one command at most
    CookedRequests(const SimulatedDisc& discInDrive, int transferLimit)
        : disc(discInDrive), largest(transferLimit), reserved(transferLimit)
    {
    }

    /// As ioctl does: with errno set where the result is -1.
    int answer(unsigned long code, void* argument);

private:
    const SimulatedDisc& disc;
    int largest;
    int reserved; ///< bytes of the buffer that a program has asked for
};
