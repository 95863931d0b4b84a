#pragma once

#include <QString>

/// The year of a release date as services and users write it, "1998-05-20" or
/// "1998": its first four characters.
inline QString yearOfDate(const QString& date)
{
    return date.left(4);
}
