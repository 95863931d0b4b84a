#pragma once

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <gtest/gtest.h>

/// A window whose services are on this machine.
class ServiceStage : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    // What the window started may outlive it, but not the services that it asks.
    void TearDown() override
    {
        services.transport().stop();
        QThreadPool::globalInstance()->waitForDone();
    }

    static QStringList drive() { return {QStringLiteral("/dev/sr0")}; }

    QTemporaryDir folder;
    LoopbackServices services;
};
