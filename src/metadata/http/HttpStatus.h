#pragma once

inline constexpr int httpStatusOk = 200;

/// Of a redirect that may name where it leads. The numbers are those of RFC 9110.
constexpr bool isRedirect(int status)
{
    return (status >= 301 && status <= 303) || status == 307 || status == 308;
}
