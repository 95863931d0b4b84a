#pragma once

#include "base/ByteOrder.h"
#include "codecs/CFile.h"
#include "codecs/NoThrow.h"

#include <QtGlobal>

#include <cstddef>
#include <vector>

/// One file being written, with a state that turns bad at the first failure and
/// stays bad; later writes and seeks then do nothing.
class OutputFile {
public:
    /// Creates or truncates the file. False when it can't be created or a file
    /// is attached already; the attached one is left alone.
    ///
    /// @param bufferBytes  of a buffer larger than the C library's own, or 0
    bool open(const std::filesystem::path& path, std::size_t bufferBytes = 0);

    bool isOpen() const { return file != nullptr; }
    bool good() const { return file && !failed; }

    /// Appends at the position. Returns good().
    bool write(const void* bytes, std::size_t count);

    /// Moves to a place counted from the start of the file. Returns good().
    bool seek(quint64 offset);

    /// Runs an action that writes. One that fails, be it by an exception, turns the
    /// state bad: what was to be written is lost.
    template<typename Action>
    bool attempt(Action&& action)
    {
        const bool done = withoutThrowing(action);
        failed = failed || !done;
        return done;
    }

    /// Overwrites an integer at a place counted from the start, where it then stands.
    /// Returns good().
    template<typename Integer>
    bool patchLittle(quint64 offset, Integer value)
    {
        quint8 bytes[sizeof value];
        byteorder::writeLittle(bytes, value);
        return seek(offset) && write(bytes, sizeof bytes);
    }
    template<typename Integer>
    bool patchBig(quint64 offset, Integer value)
    {
        quint8 bytes[sizeof value];
        byteorder::writeBig(bytes, value);
        return seek(offset) && write(bytes, sizeof bytes);
    }

    /// Bytes before the place where the next write goes.
    quint64 position() const { return offsetNow; }

    /// Hands everything buffered to the system, judges, and closes. True when
    /// every byte was taken; a failure of the closing itself is not looked at.
    [[nodiscard]] bool finish();

    /// Closes with no judgement.
    void abandon();

private:
    std::vector<char> buffer; // needed until the file is closed
    CFile file;
    quint64 offsetNow = 0;
    bool failed = false;
};
