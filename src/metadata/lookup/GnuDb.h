#pragma once

#include "disc/DiscModel.h"
#include "metadata/lookup/Xmcd.h"

#include <QByteArray>
#include <QString>

/// Asks GnuDB for the disc; among several candidates the first with the right
/// number of titles wins, else the first of all. Blocks.
GnuDbResult gnudbLookup(const DiscToc& disc);

/// Fetches one record with its status line; empty on failure. Blocks.
QByteArray gnudbRead(const QString& category, const QString& discId);
