#pragma once

#include <cstddef>

/// Each hands bytes from anywhere to one parser of what comes with a disc, and ends the
/// process when the outcome breaks a promise of that parser.
namespace fuzz {

void cueSheet(const char* bytes, size_t size);
/// The bytes are the image of a sheet that calls it WAVE.
void waveImage(const char* bytes, size_t size);
/// A table of contents as a drive delivers it.
void discTable(const char* bytes, size_t size);
/// A drive's sense data, its descriptor and its INQUIRY.
void driveAnswers(const char* bytes, size_t size);

} // namespace fuzz
