#pragma once

#include <cstddef>

namespace fuzz {

/// Writes tags, a cover and ReplayGain into a file of any bytes with this ending.
void tags(const char* extension, const char* bytes, size_t size);
/// A picture as a service sends it, up to the form in which it is embedded.
void cover(const char* bytes, size_t size);
/// Where a redirect leads: the place of the first line, by the rest.
void redirect(const char* bytes, size_t size);

} // namespace fuzz
