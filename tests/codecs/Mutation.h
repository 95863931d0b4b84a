#pragma once

#include <QByteArray>

/// The number-th broken version of a valid file: bytes flipped, fields set to the
/// values that counters break on, parts cut off, taken out, doubled or filled with
/// noise. The same number gives the same bytes. Every eighth one is cut off, by
/// turns among the headers and anywhere in the file.
QByteArray mutate(const QByteArray& valid, quint64 number);

/// Gives every Ogg page the checksum of what it holds now, so that damage gets
/// past the check of pages.
void sealOggPages(QByteArray& bytes);
