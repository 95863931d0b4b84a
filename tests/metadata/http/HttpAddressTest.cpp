#include "metadata/http/HttpAddress.h"

#include <gtest/gtest.h>

namespace {

const QByteArray from = "http://a.test/one/two?q=1";

HttpRequest requestTo(const QString& host, bool secure = false)
{
    HttpRequest request;
    request.secure = secure;
    request.host = host;
    request.target = "/x?y";
    return request;
}

} // namespace

TEST(FollowedAddress, IsOneOfHttpOrHttps)
{
    EXPECT_EQ(followedAddress(from, "http://b.test/end"), "http://b.test/end");
    EXPECT_EQ(followedAddress(from, "https://b.test/end"), "https://b.test/end");
    for (const char* location :
         {"file:///etc/hostname", "FILE:///etc/hostname", "ftp://b.test/x",    "ftps://b.test/x",
          "sftp://b.test/x",      "scp://b.test/x",       "gopher://b.test/x", "dict://b.test/x",
          "ldap://b.test/x",      "telnet://b.test/x",    "tftp://b.test/x",   "smb://b.test/x",
          "imap://b.test/x",      "smtp://b.test/x",      "rtsp://b.test/x",   "ws://b.test/x",
          "mailto:a@b.test",      "data:text/plain,x",    "javascript:1",      "httpx://b.test/x"})
        EXPECT_TRUE(followedAddress(from, location).isEmpty()) << location;
}

TEST(FollowedAddress, IsResolvedAgainstTheOneBeforeIt)
{
    EXPECT_EQ(followedAddress(from, "three"), "http://a.test/one/three");
    EXPECT_EQ(followedAddress(from, "/three?x=1"), "http://a.test/three?x=1");
    EXPECT_EQ(followedAddress(from, "../three"), "http://a.test/three");
    EXPECT_EQ(followedAddress(from, "../../../three"), "http://a.test/three")
        << "the root has nothing above it";
    EXPECT_EQ(followedAddress(from, "?x=2"), "http://a.test/one/two?x=2");
    EXPECT_EQ(followedAddress(from, "//b.test/three"), "http://b.test/three");
    EXPECT_EQ(followedAddress("https://a.test/one", "//b.test/three"), "https://b.test/three");
}

TEST(FollowedAddress, CapitalsStayInThePathAndGoFromTheScheme)
{
    const QByteArray followed = followedAddress(from, "HTTPS://B.Test/End?X=Y");
    EXPECT_TRUE(followed.startsWith("https://")) << followed.constData();
    EXPECT_TRUE(followed.endsWith("/End?X=Y")) << followed.constData();
    EXPECT_EQ(followed.toLower(), "https://b.test/end?x=y");
}

TEST(FollowedAddress, EscapesStayAndWhatIsNotEscapedBecomesSo)
{
    EXPECT_EQ(followedAddress(from, "/a%20b%2Fc?d=%2Be"), "http://a.test/a%20b%2Fc?d=%2Be");
    EXPECT_EQ(followedAddress(from, "/a b"), "http://a.test/a%20b");
    EXPECT_EQ(followedAddress(from, "http://b.test/a b"), "http://b.test/a%20b");
    EXPECT_EQ(followedAddress(from, "/\xE6\x97\xA5").toUpper(), "HTTP://A.TEST/%E6%97%A5");
    EXPECT_EQ(followedAddress(from, "http://%62.test/end"), "http://b.test/end");
}

TEST(FollowedAddress, WhatLeadsNowhereIsEmpty)
{
    EXPECT_TRUE(followedAddress(from, "http://").isEmpty());
    EXPECT_TRUE(followedAddress(from, "http://b test/").isEmpty());
    EXPECT_TRUE(followedAddress("nothing", "/x").isEmpty());
}

TEST(AddressOf, HasTheSchemeTheHostAndTheTarget)
{
    EXPECT_EQ(addressOf(requestTo(QStringLiteral("a.test"))), "http://a.test/x?y");
    EXPECT_EQ(addressOf(requestTo(QStringLiteral("a.test"), true)), "https://a.test/x?y");
    EXPECT_EQ(addressOf(requestTo(QStringLiteral("b\u00fccher.test"))), "http://xn--bcher-kva.test/x?y");
    EXPECT_EQ(addressOf(requestTo(QStringLiteral("::1"))), "http://[::1]/x?y");
}

TEST(AddressOf, AHostThatIsNoneHasNoAddress)
{
    for (const QString& host :
         {QString(), QStringLiteral("a b"), QStringLiteral("a/b"), QStringLiteral("a@b")})
        EXPECT_TRUE(addressOf(requestTo(host)).isEmpty()) << host.toStdString();
}
