#pragma once

#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/DiscMaker.h"
#include "ui/RunningRips.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

/// Short rips of a sheet and of an audio file, for RunningRips alone.
class RunningRipsStage : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    /// A worker that makes a WAV file of an audio file.
    std::unique_ptr<RipWorker> conversion(const QString& name)
    {
        DiscToc disc;
        disc.tracks = {TrackInfo()};
        disc.tracks.first().number = 1;
        disc.tracks.first().title = name;
        const QString song =
            writeFile(folder.path(), name + QStringLiteral(".wav"), wrapInWave(makeAudio(10, 1)));
        auto worker = std::make_unique<RipWorker>();
        worker->configure(nullptr, disc, output(), {}, {}, {}, {}, {}, 1, 1, 0, OutputWav, song, 1);
        return worker;
    }

    /// A worker that makes a WAV file of an image of one track.
    std::unique_ptr<RipWorker> imageRip(CdDrive& drive)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}};
        EXPECT_TRUE(drive.openCue(writeImage(folder.path(), image, makeAudio(100, 1))));
        auto worker = std::make_unique<RipWorker>();
        worker->configure(&drive, drive.readToc(), output(), {}, {}, {}, {}, {}, 1, 1, 0, OutputWav, {}, 1);
        return worker;
    }

    QString output() const { return folder.filePath(QStringLiteral("out")); }
    static int threads(const RunningRips& rips)
    {
        return static_cast<int>(rips.findChildren<QThread*>().size());
    }

    QTemporaryDir folder;
};
