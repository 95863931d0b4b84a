#include "ExpectedBody.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <random>

namespace {

QByteArray junk(qsizetype size)
{
    std::mt19937 random(7);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

} // namespace

TEST(HttpTrouble, AStallBeforeTheHeadIsNoAnswer)
{
    QElapsedTimer timer;
    timer.start();
    expectBody(silence(), {}, 0, shortLimits());
    EXPECT_GE(timer.elapsed(), 4 * shortSilence);
    EXPECT_LT(timer.elapsed(), 4 * shortSilence + 8'000);
}

TEST(HttpTrouble, AStallWithinTheHeadIsNoAnswer)
{
    LoopbackServices services(shortLimits());
    ServedAnswer half = page("never");
    half.headers.append("X: " + QByteArray(100'000, 'x'));
    half.raw = half.head().left(50'000);
    half.silent = true;
    services.on("a.test", "/", half);
    for (const QString& url : {address, secureAddress}) {
        QElapsedTimer timer;
        timer.start();
        int status = -1;
        EXPECT_TRUE(httpGet(url, &status).isEmpty());
        EXPECT_EQ(status, 0);
        EXPECT_GE(timer.elapsed(), shortSilence) << "without a stall there is no time-out";
        EXPECT_LT(timer.elapsed(), shortSilence + 8'000);
    }
}

TEST(HttpTrouble, AStallWithinTheBodyEndsIt)
{
    ServedAnswer stalls = page("0123456789");
    stalls.stallAfter = 4;
    expectBody(stalls, "0123", 200, shortLimits());
}

TEST(HttpTrouble, ASlowBodyThatNeverFallsSilentArrivesWhole)
{
    HttpLimits limits;
    limits.silenceMilliseconds = 1'000;
    LoopbackServices services(limits);
    ServedAnswer slow = page("0123456789");
    slow.pieceBytes = 1;
    slow.pieceMilliseconds = 150;
    services.on("a.test", "/", slow);
    EXPECT_EQ(httpGet(address), "0123456789");
}

TEST(HttpTrouble, ABodyThatBreaksOffIsReturnedAsFarAsItCame)
{
    ServedAnswer breaks = page("0123456789");
    breaks.breakAfter = 6;
    expectBody(breaks, "012345", 200);
    breaks.framing = ServedAnswer::Framing::Chunked;
    expectBody(breaks, "012345", 200);
    breaks.framing = ServedAnswer::Framing::UntilClose;
    expectBody(breaks, "012345", 200);
    breaks.breakAfter = 0;
    expectBody(breaks, {}, 200);
}

TEST(HttpTrouble, AHangUpBeforeTheHeadIsNoAnswer)
{
    ServedAnswer drops;
    drops.dropped = true;
    expectBody(drops, {}, 0);
}

TEST(HttpTrouble, WhatIsNoHttpIsNoAnswer)
{
    ServedAnswer strange;
    for (const QByteArray& raw : {QByteArray("220 mail.test ESMTP\r\n"), QByteArray("\0\0\0\0", 4),
                                  QByteArray("\r\n\r\n"), QByteArray("<html>hello</html>"), junk(5'000)}) {
        strange.raw = raw;
        expectBody(strange, {}, 0);
    }
}

TEST(HttpTrouble, AnInterimHeadAloneIsNoAnswer)
{
    ServedAnswer interim;
    interim.raw = "HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n";
    expectBody(interim, {}, 0);
}

TEST(HttpTrouble, ChunksAndBodiesUntilTheCloseArriveWhole)
{
    ServedAnswer answer = page(junk(200'000));
    for (const auto framing : {ServedAnswer::Framing::Chunked, ServedAnswer::Framing::UntilClose}) {
        answer.framing = framing;
        answer.pieceBytes = 7'000;
        expectBody(answer, answer.body, 200);
    }
}

TEST(HttpTrouble, ABrokenChunkEndsTheBody)
{
    ServedAnswer broken;
    broken.raw = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\nzz\r\ndef\r\n0\r\n\r\n";
    expectBody(broken, "abc", 200);
}

TEST(HttpTrouble, ACompressedBodyNobodyAskedForIsLeftAsItIs)
{
    ServedAnswer packed = page(qCompress("some text").mid(4));
    packed.headers.append("Content-Encoding: deflate");
    expectBody(packed, packed.body, 200);
    packed.headers.last() = "Content-Encoding: gzip";
    expectBody(packed, packed.body, 200);
}

TEST(HttpTrouble, ALengthBeyondTheBodyBreaksOff)
{
    ServedAnswer lying = page("0123456789");
    lying.claimedLength = 400;
    expectBody(lying, "0123456789", 200);
}

TEST(HttpTrouble, ALengthThatIsNoNumberIsNoCrash)
{
    LoopbackServices services;
    ServedAnswer strange;
    for (const char* length : {"-5", "x", "99999999999999999999", "5, 6", ""}) {
        strange.raw = QByteArray("HTTP/1.1 200 OK\r\nContent-Length: ") + length + "\r\n\r\n01234";
        services.on("a.test", "/", strange);
        int status = -1;
        const QByteArray body = httpGet(address, &status);
        EXPECT_TRUE(body.isEmpty() || body == "01234") << length;
        EXPECT_TRUE(status == 0 || status == 200) << length;
    }
}

TEST(HttpTrouble, FiftyMegabytesOfJunkArriveWhole)
{
    LoopbackServices services;
    const QByteArray bytes = junk(50'000'000);
    services.on("a.test", "/", page(bytes));
    EXPECT_EQ(httpGet(secureAddress), bytes);
    EXPECT_EQ(CoverArt::get(address), bytes);
}

TEST(HttpTrouble, TheBodyOfAnErrorIsNotWaitedFor)
{
    LoopbackServices services;
    ServedAnswer stalls = errorPage(503);
    stalls.stallAfter = 10;
    services.on("a.test", "/", stalls);
    QElapsedTimer timer;
    timer.start();
    int status = 0;
    EXPECT_TRUE(httpGet(address, &status).isEmpty());
    EXPECT_EQ(status, 503);
    EXPECT_TRUE(gnudbGet(address).isEmpty());
    EXPECT_LT(timer.elapsed(), HttpLimits().silenceMilliseconds / 2);
}

TEST(HttpTrouble, AnEndlessBodyEndsAtTheLimit)
{
    HttpLimits limits;
    limits.bodyBytes = 3'000'001;
    LoopbackServices services(limits);
    ServedAnswer endless = page(QByteArray(100'000, 'x'));
    endless.framing = ServedAnswer::Framing::UntilClose;
    endless.endless = true;
    services.on("a.test", "/", endless);
    int status = 0;
    EXPECT_EQ(httpGet(address, &status), QByteArray(3'000'001, 'x'));
    EXPECT_EQ(status, 200);
}

TEST(HttpTrouble, AHeadPastTheLimitIsNoAnswer)
{
    ServedAnswer wordy = page("ok");
    for (int i = 0; i < 1'000; ++i)
        wordy.headers.append("X-" + QByteArray::number(i) + ": " + QByteArray(20, 'y'));
    HttpLimits limits;
    limits.headBytes = wordy.head().size();
    expectBody(wordy, "ok", 200, limits);
    --limits.headBytes;
    expectBody(wordy, {}, 0, limits);
}
