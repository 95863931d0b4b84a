#pragma once

/// What the module that brings FFmpeg offers under these names: a new reader and a
/// new writer, which the caller owns. It is built with the program and goes with it.

class MediaReader;
class MediaWriter;

using NewMediaReader = MediaReader*();
using NewMediaWriter = MediaWriter*();

inline constexpr char newMediaReaderName[] = "newMediaReader";
inline constexpr char newMediaWriterName[] = "newMediaWriter";
