#pragma once

#include "disc/DrivePlatform.h"

/// The drive letters behind which Windows says that a CD drive stands, as "D:".
class WindowsDrivePlatform : public DrivePlatform {
public:
    QStringList enumerateDrives() override;
    std::unique_ptr<DriveDevice> open(const QString& letter) override;
    qint64 nowNanoseconds() override;
    void sleepMilliseconds(int duration) override;
};
