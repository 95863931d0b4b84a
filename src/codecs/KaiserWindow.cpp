#include "codecs/KaiserWindow.h"

#include <algorithm>
#include <cmath>

double besselI0(double x, int mostTerms)
{
    constexpr double precision = 1e-12;

    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; k <= mostTerms; ++k) {
        const double factor = x / (2.0 * k);
        term *= factor * factor;
        sum += term;
        if (sum * precision > term)
            break;
    }
    return sum;
}

double kaiserWindow(double place, double beta, int mostTerms)
{
    const double across = std::sqrt(std::max(0.0, 1.0 - place * place));
    return besselI0(beta * across, mostTerms) / besselI0(beta, mostTerms);
}
