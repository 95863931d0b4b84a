#pragma once

#include <QByteArray>
#include <QMap>

#include <algorithm>

/// How many reads gave exactly these bytes. The order of the keys, byte by byte,
/// is what settles a tie.
using Votes = QMap<QByteArray, int>;

/// The entry with the most votes, the lowest bytes of several; the end of an
/// empty map.
inline Votes::const_iterator mostVoted(const Votes& votes)
{
    return std::max_element(votes.cbegin(), votes.cend());
}
