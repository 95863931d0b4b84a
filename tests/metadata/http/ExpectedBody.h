#pragma once

#include "metadata/http/Http.h"
#include "metadata/lookup/CoverArt.h"
#include "support/LoopbackServices.h"

#include <gtest/gtest.h>

inline const QString address = QStringLiteral("http://a.test/x");
inline const QString secureAddress = QStringLiteral("https://a.test/x");
inline constexpr int shortSilence = 400;

// For servers that fall silent. All others get the time that a busy machine needs.
inline HttpLimits shortLimits()
{
    HttpLimits limits;
    limits.silenceMilliseconds = shortSilence;
    return limits;
}

// The answer as it reaches httpGet over a plain and over a secure connection, and the
// other routines; each asks services of its own.
inline void expectBody(const ServedAnswer& answer, const QByteArray& body, int expectedStatus,
                       const HttpLimits& limits = {})
{
    const auto asked = [&](const auto& ask) {
        LoopbackServices services(limits);
        services.on("a.test", "/", answer);
        return ask();
    };
    for (const QString& url : {address, secureAddress}) {
        int status = -1;
        EXPECT_EQ(asked([&] { return httpGet(url, &status); }), body) << qPrintable(url);
        EXPECT_EQ(status, expectedStatus) << qPrintable(url);
    }
    EXPECT_EQ(asked([] { return gnudbGet(address); }), body);
    EXPECT_EQ(asked([] { return CoverArt::get(address); }), body);
}
