#pragma once

#include "disc/DriveDevice.h"

#include <array>
#include <optional>

struct sg_io_hdr;

using SenseBuffer = std::array<quint8, 32>;

/// Why a command was not carried out.
struct CommandRefusal {
    int errorNumber;
    DriveFailure failure;
};

/// Judges the kernel's answer to an SG_IO request: status, host status, driver
/// status and sense data. Nothing for a command that was carried out without
/// complaint. A check condition is a complaint even with the sense key "recovered
/// error"; sense data that comes with a good status and tells of nothing is none.
///
/// A drive's own error is never a time-out, however late it comes; an aborted
/// command is one when it took the whole time that it was given.
std::optional<CommandRefusal> refusalOfAnswer(const sg_io_hdr& header, const SenseBuffer& senseBytes);

/// Judges the error of a request that the kernel did not take at all.
CommandRefusal refusalOfRequest(int error);
