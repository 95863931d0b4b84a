#pragma once

#include "ui/Background.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <algorithm>

#include <gtest/gtest.h>

/// A window whose services are on this machine.
class ServiceStage : public ::testing::Test {
protected:
    void SetUp() override
    {
        QSettings().clear();
        // Lookups overtake each other on a machine with a single processor, too.
        QThreadPool::globalInstance()->setMaxThreadCount(std::max(4, poolSize));
    }
    // What the window started may outlive it, but not the services that it asks.
    void TearDown() override
    {
        services.transport().stop();
        waitForBackground();
        QThreadPool::globalInstance()->setMaxThreadCount(poolSize);
    }

    static QStringList drive() { return {QStringLiteral("/dev/sr0")}; }

    const int poolSize = QThreadPool::globalInstance()->maxThreadCount();
    QTemporaryDir folder;
    LoopbackServices services;
};
