#pragma once

#include <QByteArray>
#include <QString>

/// Decodes text in the system's local 8-bit code page: that of the locale where
/// it is neither UTF-8 nor plain ASCII, else the one usual for the system language
/// (CP932 for Japanese, CP1252 in doubt). Bytes that mean nothing there become U+FFFD.
QString decodeLocal8Bit(const QByteArray& bytes);

/// The same from a code page of a given name; an unknown name counts as CP1252.
QString decodeCodePage(const QByteArray& bytes, const char* codePage);
