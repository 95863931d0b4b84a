#pragma once

#include <QtGlobal>

#include <cmath>

/// The series of the modified Bessel function of order 0.
inline double plainBesselI0(double x)
{
    double sum = 1;
    double term = 1;
    for (int k = 1; k < 32; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
        if (sum * 1e-12 > term)
            return sum;
    }
    return sum;
}

/// The filter as its definition reads, one output after another.
struct PlainDsdFilter {
    float coefficients[128];
    float ring[128] = {};
    unsigned position = 0;

    PlainDsdFilter()
    {
        double sum = 0;
        for (int i = 0; i < 128; ++i) {
            const double n = i - 63.5;
            const double ideal = std::sin(n * 0.39269908169872414) / (n * 3.141592653589793);
            const double inside = 1 - (n / 63.5) * (n / 63.5);
            const double window =
                plainBesselI0(8.0 * std::sqrt(inside > 0 ? inside : 0)) / plainBesselI0(8.0);
            coefficients[i] = static_cast<float>(ideal * window);
            sum += ideal * window;
        }
        for (float& coefficient : coefficients)
            coefficient = static_cast<float>(static_cast<double>(coefficient) * (1.0 / sum));
    }

    float feed(quint8 byte, bool lsbFirst)
    {
        for (int bit = 0; bit < 8; ++bit) {
            ring[position] = (byte >> (lsbFirst ? bit : 7 - bit)) & 1 ? 1.0f : -1.0f;
            position = (position + 1) % 128;
        }
        double sum = 0;
        for (unsigned k = 0; k < 128; ++k)
            sum += static_cast<double>(coefficients[k]) * static_cast<double>(ring[(position - k - 1) % 128]);
        return static_cast<float>(sum);
    }
};
