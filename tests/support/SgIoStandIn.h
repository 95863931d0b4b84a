#pragma once

#include "support/SgIoAnswers.h"

#include <QByteArray>
#include <QList>

#include <functional>
#include <mutex>
#include <optional>

struct sg_io_hdr;

/// What goes wrong with a command. The data of the answer is filled in all the
/// same, as good as ever, so that a sign that is overlooked shows as good data.
struct SgIoFault {
    int requestError = 0; ///< errno of the request itself, which then does nothing
    int status = 0;       ///< SCSI status
    int host = 0;
    int driver = 0;
    QByteArray sense;
    std::optional<int> residue;   ///< bytes reported as missing
    unsigned duration = 1;        ///< milliseconds that the command is reported to have taken
    bool lastsToTheLimit = false; ///< it took as long as the kernel let it

    int after = 0;                ///< matching commands that pass first
    int times = 1;                ///< commands that it strikes; negative: all from then on
    std::optional<quint8> opcode; ///< strikes these commands alone
    std::function<bool()> holds;  ///< strikes while this is so, where it is set

    /// A check condition with sense data in the fixed format.
    static SgIoFault checkCondition(int key, int code, int qualifier);
    /// A drive that does not answer: the kernel gives up when the limit has passed.
    static SgIoFault hang();
    SgIoFault& forever();
    SgIoFault& only(quint8 commandCode);
    SgIoFault& afterCommands(int count);
    SgIoFault& whileSo(std::function<bool()> condition);
};

/// Stands in for the operating system's calls around the block node of one
/// drive and, where it has one, its generic node: open, close and the SG_IO
/// request of this process, answered byte by byte from a drive behind it. All
/// other files go to the real system. One at a time, and the commands of one
/// thread at a time. Works in programs that are linked with SgIoCalls.cpp.
class SgIoStandIn {
public:
    enum class Node { block, generic };
    static constexpr unsigned leastBlockTimeOutMs = 7000; ///< the kernel's, for a block node alone

    struct Opening {
        Node node;
        int flags;
        bool operator==(const Opening&) const = default;
    };

    /// What a request carried, and how long it is reported to have taken.
    struct Request {
        Node node = Node::block;
        QByteArray command;
        int direction = 0;
        unsigned timeOutMs = 0;
        unsigned dataLength = 0;
        int senseRoom = 0;
        unsigned durationMs = 0;
    };

    SgIoStandIn(QByteArray devicePath, DriveDevice& drive);
    ~SgIoStandIn();
    SgIoStandIn(const SgIoStandIn&) = delete;
    SgIoStandIn& operator=(const SgIoStandIn&) = delete;

    QByteArray genericPath;   ///< empty: there is no generic node
    size_t transferLimit = 0; ///< bytes of a request that the kernel takes at most; 0: any number
    int openError = 0;        ///< errno of every open of the block node
    int openForWritingError = 0;
    int openGenericError = 0; ///< errno of every open of the generic node
    SgIoAnswers answers;
    QList<SgIoFault> faults;

    QList<Opening> opens;    ///< in order
    QList<Request> requests; ///< in order
    int otherRequests = 0;   ///< requests that are not SG_IO
    int openFiles() const;

    /// The calls themselves; empty for a file that is not this drive's.
    static std::optional<int> handleOpen(const char* path, int flags);
    static std::optional<int> handleRequest(int file, unsigned long code, void* argument);
    static void handleClose(int file);
    /// Lets a second number stand for an open file, where that one is this drive's.
    static void handleDuplicate(int file, int copy);
    /// Whether a file is one of this drive's.
    static bool isOpen(int file);

private:
    struct OpenFile {
        int number;
        Node node;
    };

    std::optional<Node> nodeOf(int file) const;
    int openNode(Node node, int flags);
    int errorOfOpen(Node node, int flags) const;
    int request(Node node, unsigned long code, sg_io_hdr* header);
    std::optional<SgIoFault> faultFor(quint8 opcode);

    QByteArray path;
    mutable std::mutex mutex; ///< of the list of files, which any thread's close looks at
    QList<OpenFile> files;
};
