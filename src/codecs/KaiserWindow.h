#pragma once

/// The modified Bessel function of the first kind and order 0, by its series,
/// which ends after so many terms at the latest.
double besselI0(double x, int mostTerms = 31);

/// The Kaiser window of a shape `beta`: 1 in the middle, at 0, and least at -1 and 1.
double kaiserWindow(double place, double beta, int mostTerms = 31);
