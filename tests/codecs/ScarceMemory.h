#pragma once

/// Lets this program make so many allocations for as long as it lives, and refuses
/// those behind them. One at a time. In a program that is linked with
/// ScarceMemory.cpp, whose operators take the place of the library's own.
class AllocationLimit {
public:
    static constexpr int withoutBound = -1;

    explicit AllocationLimit(int count);
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;

    /// Whether an allocation was refused since this was last made false.
    static inline bool refused = false;
};
