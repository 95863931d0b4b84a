#include "metadata/http/WindowsHttpAddress.h"

#include <gtest/gtest.h>

TEST(WindowsHttpPlace, HasThePartsThatWinHttpTakes)
{
    const WindowsHttpPlace plain = placeOf("http://a.test/one?q=%2B#part");
    EXPECT_FALSE(plain.secure);
    EXPECT_EQ(plain.host, QStringLiteral("a.test"));
    EXPECT_EQ(plain.port, 80);
    EXPECT_EQ(plain.target, "/one?q=%2B");

    const WindowsHttpPlace secure = placeOf("https://[::1]:8443");
    EXPECT_TRUE(secure.secure);
    EXPECT_EQ(secure.host, QStringLiteral("::1"));
    EXPECT_EQ(secure.port, 8443);
    EXPECT_EQ(secure.target, "/");
    EXPECT_EQ(placeOf("https://a.test").port, 443);
}

TEST(WindowsHttpPlace, TheTargetStaysAsItIsToTheLetter)
{
    EXPECT_EQ(placeOf("http://a.test/%7Ea/%41?x=\"[%]").target, "/%7Ea/%41?x=\"[%]");
    EXPECT_EQ(placeOf("http://a.test?x=1").target, "/?x=1");
    EXPECT_EQ(placeOf("http://a.test/a?u=http://b.test/").target, "/a?u=http://b.test/");
}

TEST(WindowsHttpPlace, HostsAreInAscii)
{
    EXPECT_EQ(placeOf("http://b\xC3\xBC"
                      "cher.test/")
                  .host,
              QStringLiteral("xn--bcher-kva.test"));
    EXPECT_EQ(placeOf("HTTP://A.Test/").host, QStringLiteral("a.test"));
}

TEST(WindowsHttpPlace, WhatLeadsNowhereHasNoHost)
{
    for (const char* address : {"", "nothing", "http://", "http:///x", "ftp://a.test/", "//a.test/",
                                "http://a b/", "http://a.test:99999/", "https:a.test"})
        EXPECT_TRUE(placeOf(address).host.isEmpty()) << address;
}
