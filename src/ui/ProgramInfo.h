#pragma once

/// What the program calls itself, in the window, the log and the About page.
namespace programinfo {

inline constexpr char name[] = "Tarvel CD Ripper";
/// The name of its desktop entry, by which a desktop finds the icon of a window.
inline constexpr char desktopEntry[] = "tarvel-cd-ripper";
inline constexpr char organisation[] = "VEDRANO";
inline constexpr char version[] = "2.0.0";
inline constexpr char buildLabel[] = "2.0.0 (build 20261006-1720)";
inline constexpr char maker[] = "Made by VEDRANO";
inline constexpr char site[] = "https://tarvel.example/";

} // namespace programinfo
