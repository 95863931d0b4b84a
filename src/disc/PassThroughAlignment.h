#pragma once

#include <cstddef>

/// In bytes, of the memory that a pass-through command reads into.
inline constexpr size_t PASS_THROUGH_ALIGNMENT = 64;
