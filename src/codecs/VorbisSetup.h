#pragma once

#include <QByteArray>

/// Whether the setup packet of a Vorbis stream, which begins as one, is complete
/// as far as its counts decide what is allocated, asks for a bounded amount, and
/// reads codes from no book that has none.
bool vorbisSetupIsSound(const QByteArray& packet);
