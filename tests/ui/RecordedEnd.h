#pragma once

#include "ui/AbruptEnd.h"

#include <functional>
#include <utility>

/// Counts the abrupt ends of the program in place of ending it.
class RecordedEnd : public AbruptEnd {
public:
    explicit RecordedEnd(std::function<void()> onEnd) : atEnd(std::move(onEnd)) {}
    void endProcess() override
    {
        ++calls;
        atEnd();
    }
    int calls = 0;

private:
    std::function<void()> atEnd;
};
