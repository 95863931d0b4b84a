#pragma once

#include <QByteArray>

#include <vector>

/// Whether the three header packets of a Vorbis stream are complete and ask for
/// no more than music does. The library that decodes believes what they say: it
/// allocates by the counts in them, and reads through tables that they leave empty.
bool vorbisHeadersAreSound(const std::vector<QByteArray>& packets);
