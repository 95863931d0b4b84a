#pragma once

#include "disc/DriveDevice.h"

#include <QByteArray>
#include <QList>

#include <mutex>
#include <optional>

struct sg_io_hdr;

/// What goes wrong with a command. The data of the answer is filled in all the
/// same, as good as ever, so that a sign that is overlooked shows as good data.
struct SgIoFault {
    int requestError = 0;     ///< errno of the request itself, which then does nothing
    int status = 0;           ///< SCSI status
    int host = 0;
    int driver = 0;
    QByteArray sense;
    std::optional<int> residue; ///< bytes reported as missing
    unsigned duration = 1;      ///< milliseconds that the command is reported to have taken

    int after = 0;                 ///< matching commands that pass first
    int times = 1;                 ///< commands that it strikes; negative: all from then on
    std::optional<quint8> opcode;  ///< strikes these commands alone

    /// A check condition with sense data in the fixed format.
    static SgIoFault checkCondition(int key, int code, int qualifier);
    SgIoFault& forever();
    SgIoFault& only(quint8 commandCode);
    SgIoFault& afterCommands(int count);
};

/// Sense data in the fixed format, 18 bytes, of a current error.
QByteArray fixedSense(int key, int code, int qualifier);

/// Stands in for the operating system's calls around one device path: open,
/// close and the SG_IO request of this process, answered byte by byte from a
/// drive behind it. All other files go to the real system. One at a time, and
/// the commands of one thread at a time. Works in programs that are linked with
/// SgIoCalls.cpp.
class SgIoStandIn {
public:
    /// What a request carried.
    struct Request {
        QByteArray command;
        int direction = 0;
        unsigned timeOutMs = 0;
        unsigned dataLength = 0;
        int senseRoom = 0;
    };

    SgIoStandIn(QByteArray devicePath, DriveDevice& drive);
    ~SgIoStandIn();
    SgIoStandIn(const SgIoStandIn&) = delete;
    SgIoStandIn& operator=(const SgIoStandIn&) = delete;

    int openError = 0;          ///< errno of every open
    int openForWritingError = 0;
    int inquiryBytes = 36;      ///< that the drive sends at most
    bool announceWholeToc = false; ///< sends 804 bytes rather than what is in use
    QList<SgIoFault> faults;

    QList<int> opens;           ///< flags of each open, in order
    QList<Request> requests;    ///< in order
    int otherRequests = 0;      ///< requests that are not SG_IO
    int openFiles() const;

    /// The calls themselves; empty for a file that is not this drive's.
    static std::optional<int> handleOpen(const char* path, int flags);
    static std::optional<int> handleRequest(int file, unsigned long code, void* argument);
    static void handleClose(int file);

private:
    bool owns(int file) const;
    int openDevice(int flags);
    int request(unsigned long code, sg_io_hdr* header);
    void answer(sg_io_hdr& header);
    bool testUnitReady(sg_io_hdr& header);
    bool readToc(sg_io_hdr& header);
    bool readCd(sg_io_hdr& header);
    bool inquiry(sg_io_hdr& header);
    std::optional<SgIoFault> faultFor(quint8 opcode);

    QByteArray path;
    DriveDevice& device;
    mutable std::mutex mutex; ///< of the list of files, which any thread's close looks at
    QList<int> files;
};
