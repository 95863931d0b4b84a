#pragma once

#include "convert/ConversionRun.h"
#include "convert/FolderOfAudio.h"
#include "support/DiscMaker.h"
#include "support/Language.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <functional>

/// Converted, failed, skipped.
using Counts = std::array<int, 3>;

/// A folder of audio and a run over it, whose outcome is counted.
class ConversionStage : public ::testing::Test {
protected:
    void SetUp() override { speak(2); }

    /// @param before  called with the number of each file, from 1
    Counts run(const std::function<void(int)>& before = {}, const char* format = "FLAC")
    {
        int number = 0;
        ConversionRun conversion(place.source(), place.output(), QLatin1String(format), [&](const QString&) {
            ++number;
            if (before)
                before(number);
            return true;
        });
        const ConversionCounts counts = conversion.convert(audioFilesIn(place.source()));
        return {counts.converted, counts.failed, counts.skipped};
    }

    /// A folder of the user's beside source and output, with a file in it.
    QString precious() const
    {
        const QString folder = place.top() + QStringLiteral("/Precious");
        QDir().mkpath(folder);
        writeFile(folder, QStringLiteral("letter.txt"), "kept");
        return folder;
    }

    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    FolderOfAudio place;
};
