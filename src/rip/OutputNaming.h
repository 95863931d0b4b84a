#pragma once

#include <QString>

struct RipOrder;
struct TrackInfo;

/// Where the album's cover goes, below the output folder.
inline constexpr char coverFileName[] = "/cover.jpg";

/// A number as those of tracks are written: with a zero in front below 10.
QString twoDigits(int number);

/// The title of a track, or "Track 7" where it has none.
QString trackName(const TrackInfo& track);

/// Takes out what no file name may hold on any common system: \ / : * ? " < > |
QString withoutForbiddenCharacters(QString text);

/// Output folder, slash and file name without extension, by the order's naming
/// rule.
QString outputBasePath(const RipOrder& order, int trackNumber, const QString& title);
