#pragma once

#include "disc/DriveDevice.h"

#include <QByteArray>

struct sg_io_hdr;

inline constexpr int checkConditionStatus = 0x02; ///< of SCSI
inline constexpr int senseDriverStatus = 0x08;    ///< of the kernel: sense data came
inline constexpr int timeOutHostStatus = 0x03;    ///< of the kernel

/// Sense data in the fixed format, 18 bytes, of a current error.
QByteArray fixedSense(int key, int code, int qualifier);

/// Puts a SCSI status and its sense data into the answer to a request.
void putScsiStatus(sg_io_hdr& header, int status, const QByteArray& sense);

/// What the drive behind answers to the command of an SG_IO request, byte by byte.
/// A command that it does not know, or a field that it cannot serve, is an illegal
/// request, as in a real drive.
class SgIoAnswers {
public:
    explicit SgIoAnswers(DriveDevice& drive) : device(drive) {}

    /// Fills everything that the kernel fills.
    void answer(sg_io_hdr& header);

    bool announceWholeToc = false; ///< sends 804 bytes rather than what is in use

private:
    void inquiry(sg_io_hdr& header);
    void testUnitReady(sg_io_hdr& header);
    void requestSense(sg_io_hdr& header);
    void readToc(sg_io_hdr& header);
    void modeSense(sg_io_hdr& header);
    void readCd(sg_io_hdr& header);

    DriveDevice& device;
};
