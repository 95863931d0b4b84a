#pragma once

#include <QStringList>

/// How the lines of the rip log may be, one by one and together.
namespace loggrammar {

/// Whether they begin with the header of a rip.
bool isOfRip(const QStringList& lines);

/// What is not as it has to be.
/// @param ofOneRip  no other rip wrote into the log of this one
QStringList complaints(const QStringList& lines, bool ofOneRip);

} // namespace loggrammar
