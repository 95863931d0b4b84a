#pragma once

/// Runs an action at the edge of a codec, where no exception may pass. One that
/// ends in an exception, which is one out of memory, yields an empty result.
template<typename Action>
auto withoutThrowing(Action&& action) noexcept -> decltype(action())
{
    try {
        return action();
    } catch (...) {
        return {};
    }
}
