#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the process, with the promise that was not kept.
inline void require(bool kept, const char* promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace fuzz
