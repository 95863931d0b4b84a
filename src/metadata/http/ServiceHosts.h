#pragma once

/// Where the lookup services live, and the contact that they ask of a client.
namespace services {

inline constexpr char musicBrainz[] = "https://musicbrainz.org";
inline constexpr char coverArtArchive[] = "https://coverartarchive.org";
inline constexpr char discogs[] = "https://api.discogs.com";
inline constexpr char iTunes[] = "https://itunes.apple.com";
inline constexpr char gnuDb[] = "http://gnudb.gnudb.org";
inline constexpr char accurateRip[] = "http://www.accuraterip.com";

/// The address by which a service reaches the people behind this program; the
/// build sets it with TARVEL_CONTACT_ADDRESS.
#ifdef TARVEL_CONTACT_ADDRESS
inline constexpr char contactAddress[] = TARVEL_CONTACT_ADDRESS;
#else
inline constexpr char contactAddress[] = "contact@tarvel.invalid";
#endif
/// Sent by the cover requests instead.
inline constexpr char placeholderContactAddress[] = "contact@example.com";

} // namespace services
