#pragma once

/// Lets the families that the look asks for stand in on a machine that lacks
/// them, Japanese glyphs included. Called once, after the application object
/// exists; a family that is installed is left alone.
void installFontSubstitutes();
