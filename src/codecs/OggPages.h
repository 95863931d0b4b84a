#pragma once

#include "codecs/CFile.h"

#include <QByteArray>

#include <vector>

/// What stands in an Ogg file up to its first damaged page.
struct OggPages {
    bool whole = false;              ///< the file holds undamaged pages and nothing else
    std::uint64_t bytes = 0;         ///< of the undamaged pages, from the start of the file
    std::vector<QByteArray> headers; ///< the first packets, as many as were asked for, or fewer
};

/// Walks the pages of a file and compares their checksums.
OggPages checkOggPages(std::FILE* file, std::size_t headerPackets);

/// The file itself where all of it is undamaged, else a nameless copy of what
/// stands before the damage. Null when that copy can't be made.
CFile undamagedPart(CFile file, const OggPages& pages);
