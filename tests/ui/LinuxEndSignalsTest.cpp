#include "ui/EndSignals.h"

#include "codecs/Transcoder.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <QWidget>

#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>

namespace {

class LinuxEndSignals : public ::testing::Test {
protected:
    // What is ignored stays so, and a run in the background inherits that.
    LinuxEndSignals()
    {
        for (const int number : {SIGTERM, SIGINT, SIGHUP})
            std::signal(number, SIG_DFL);
        QGuiApplication::setQuitOnLastWindowClosed(false);
        QObject::connect(&tooLate, &QTimer::timeout, [] { QCoreApplication::exit(neverEnded); });
        tooLate.start(20000);
        window.show();
    }

    static void raiseSoon(int number)
    {
        QTimer::singleShot(0, [number] { std::raise(number); });
    }

    static constexpr int neverEnded = 99;
    QTimer tooLate;
    QWidget window;
};

} // namespace

TEST_F(LinuxEndSignals, EachClosesTheWindowsAndEndsWithSuccess)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(number);
        const EndSignals endSignals;
        window.show();
        raiseSoon(number);
        EXPECT_EQ(QApplication::exec(), 0);
        EXPECT_FALSE(window.isVisible());
    }
}

TEST_F(LinuxEndSignals, ADialogInFrontIsNoObstacle)
{
    const EndSignals endSignals;
    QDialog dialog(&window);
    QTimer::singleShot(0, &dialog, [&dialog] { dialog.exec(); });
    QTimer::singleShot(50, [] { std::raise(SIGTERM); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(window.isVisible());
}

// It holds the GUI thread, which would hear of the end when it is through with a file.
TEST_F(LinuxEndSignals, AConversionIsStoppedAtOnce)
{
    {
        const EndSignals endSignals;
        EXPECT_FALSE(conversionsAreStopped);
        std::raise(SIGTERM);
        EXPECT_TRUE(conversionsAreStopped);
    }
    EXPECT_FALSE(conversionsAreStopped);
}

// The first may have come upon a program that hangs.
TEST_F(LinuxEndSignals, TheSameOneAgainEndsTheProcessAtOnce)
{
    const EndSignals endSignals;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const auto raiseTwice = [number] {
            std::raise(number);
            std::raise(number);
            std::_Exit(0);
        };
        EXPECT_EXIT(raiseTwice(), ::testing::KilledBySignal(number), "") << number;
    }
}

TEST_F(LinuxEndSignals, WhatIsIgnoredStaysSo)
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    {
        const EndSignals endSignals;
        std::raise(SIGHUP);
        EXPECT_FALSE(conversionsAreStopped);
    }
    EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}
