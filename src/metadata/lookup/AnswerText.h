#pragma once

#include <QString>

/// A text of a service's answer as it is taken over into what the user sees and
/// what is written: no longer than a text field holds. A table is slow to draw a
/// text of a million characters.
inline QString takenOver(const QString& text)
{
    constexpr qsizetype mostCharacters = 32767;
    const bool halvesOne = text.size() > mostCharacters && text[mostCharacters - 1].isHighSurrogate();
    return text.left(halvesOne ? mostCharacters - 1 : mostCharacters);
}
