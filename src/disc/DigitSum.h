#pragma once

#include <QtGlobal>

/// The sum of the decimal digits, as the ids of the CDDB family add up seconds.
constexpr quint32 digitSum(quint32 number)
{
    quint32 sum = 0;
    for (; number > 0; number /= 10)
        sum += number % 10;
    return sum;
}
