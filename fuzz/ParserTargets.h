#pragma once

#include <cstddef>

/// Each hands bytes from anywhere to one parser of what a service sent, and ends the
/// process when the outcome breaks a promise of that parser.
namespace fuzz {

void musicBrainz(const char* bytes, size_t size);
void xmcd(const char* bytes, size_t size);
void iTunes(const char* bytes, size_t size);
/// The disc is the one that the first chunk of the file is about.
void dbar(const char* bytes, size_t size);

} // namespace fuzz
