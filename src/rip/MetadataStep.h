#pragma once

struct RipOrder;
class RunReport;

/// The step of a disc run in front of its first sector: looks the disc up, fills
/// in what the user left empty, and reports the outcome. Blocks the thread on its
/// requests. Misses are no error, and a run that is stopped asks no further
/// service.
void runMetadataStep(RipOrder& order, RunReport& report);
