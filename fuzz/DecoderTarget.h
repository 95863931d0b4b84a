#pragma once

#include <cstddef>

namespace fuzz {

/// Writes the bytes into a file with this ending and lets its decoder play the
/// beginning. Ends the process when a decoder breaks a promise about blocks.
void decoder(const char* extension, const char* bytes, size_t size);

} // namespace fuzz
