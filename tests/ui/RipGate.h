#pragma once

#include "ui/WindowDriver.h"

#include <QTest>

#include <algorithm>
#include <atomic>
#include <memory>
#include <semaphore>

/// Holds the rip of a disc when its drive has answered a read that begins at a
/// sector, for the n-th time, and before any sector of that read is judged. The
/// drive reads 27 sectors at a time, the first time from the disc's start on.
class RipGate {
public:
    explicit RipGate(DriveShelf& shelf, quint32 lba, int occurrence = 1)
    {
        // A rip may be on its way out of the gate while this goes.
        shelf.onClock = [kept = state, &shelf, lba, occurrence] {
            const auto isThere = [lba](const SimulatedDrive::Command& command) {
                return command.lba == lba && command.count > 0;
            };
            const auto& commands = shelf.commands;
            if (commands.isEmpty() || !isThere(commands.last())
                || std::count_if(commands.cbegin(), commands.cend(), isThere) != occurrence
                || kept->held.exchange(true))
                return;
            kept->gate.acquire();
        };
    }
    ~RipGate() { release(); }
    RipGate(const RipGate&) = delete;
    RipGate& operator=(const RipGate&) = delete;

    bool waitUntilHeld()
    {
        return QTest::qWaitFor([this] { return state->held.load(); }, 60000);
    }
    void release() { state->gate.release(); }

private:
    struct State {
        std::atomic<bool> held = false;
        std::counting_semaphore<8> gate{0};
    };
    const std::shared_ptr<State> state = std::make_shared<State>();
};
