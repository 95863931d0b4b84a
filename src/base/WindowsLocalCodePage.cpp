#include "base/LocalCodePage.h"

#include <windows.h>

#include <charconv>
#include <optional>
#include <string_view>

namespace {

constexpr UINT westernCodePage = 1252;
constexpr UINT leastCodePage = 100; // below are words for "the system's own" and the like

// "CP932" by its number; nothing else has a name here.
UINT numberOf(std::string_view name)
{
    constexpr std::string_view prefix = "CP";
    UINT number = 0;
    if (!name.starts_with(prefix))
        return westernCodePage;
    const char* const end = name.data() + name.size();
    const auto read = std::from_chars(name.data() + prefix.size(), end, number);
    const bool whole = read.ec == std::errc() && read.ptr == end;
    return whole && number >= leastCodePage && IsValidCodePage(number) ? number : westernCodePage;
}

// Windows gives every single byte a character: to those that have no meaning a control
// character or one of its private ones.
bool standsForNothing(char16_t unit)
{
    return (unit >= 0x80 && unit < 0xA0) || (unit >= 0xF8F0 && unit <= 0xF8FF);
}

/// The one character that a byte or a pair means.
std::optional<QChar> characterOf(const char* bytes, int length, UINT codePage)
{
    wchar_t unit = 0;
    if (MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes, length, &unit, 1) != 1)
        return std::nullopt;
    if (length == 1 && standsForNothing(unit))
        return std::nullopt;
    return QChar(unit);
}

QString decode(const QByteArray& bytes, UINT codePage)
{
    if (codePage == CP_UTF8)
        return QString::fromUtf8(bytes);
    QString text;
    text.reserve(bytes.size());
    for (qsizetype place = 0; place < bytes.size();) {
        const char* const next = bytes.constData() + place;
        const bool pair =
            place + 1 < bytes.size() && IsDBCSLeadByteEx(codePage, static_cast<BYTE>(*next)) != FALSE;
        const int length = pair ? 2 : 1;
        const auto character = characterOf(next, length, codePage);
        text.append(character.value_or(QChar::ReplacementCharacter));
        place += character ? length : 1;
    }
    return text;
}

} // namespace

QString decodeCodePage(const QByteArray& bytes, const char* codePage)
{
    return decode(bytes, numberOf(codePage));
}

// What Windows calls its own; UTF-8 where a person has chosen that.
QString decodeLocal8Bit(const QByteArray& bytes)
{
    return decode(bytes, GetACP());
}
