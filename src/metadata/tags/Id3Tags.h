#pragma once

namespace TagLib::ID3v2 {
class Tag;
}

struct TagData;

/// Writes all values into an ID3v2 tag, for MP3 and WAV. Numbers that aren't
/// above 0 and a null cover leave earlier frames in place. False when there is a
/// cover that no picture could be made of, which then counts as null.
bool fillId3v2Tag(TagLib::ID3v2::Tag* tag, const TagData& tags);
