#pragma once

#include <cstddef>

/// Each hands bytes from anywhere to one parser of the lookups, and ends the
/// process when the outcome breaks a promise of that parser.
namespace fuzz {

void musicBrainz(const char* bytes, size_t size);
void xmcd(const char* bytes, size_t size);
void iTunes(const char* bytes, size_t size);

} // namespace fuzz
