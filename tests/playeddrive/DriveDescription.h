#pragma once

#include "support/SimulatedDrive.h"

#include <QMap>
#include <QString>
#include <QtGlobal>

/// Which drive is played, and which disc lies in it: what an environment can say of
/// a simulated drive.
struct DriveDescription {
    QString disc = QStringLiteral("clean"); ///< the name of one of damagedDiscs()
    quint64 seed = 1000;                    ///< decides where the damage lies and what each read gives
    int seconds = 120;
    quint32 audioSeed = 1;
    QString audioFile;          ///< a raw image that lies on the disc in place of made audio
    QList<quint32> trackStarts; ///< sectors; none: three tracks of the same length
    int readOffset = 0;
    bool usb = false;
    bool c2 = true;
    double pace = 0; ///< real seconds that a second of the drive's time lasts

    /// Each value under its variable's name, TARVEL_DRIVE_ in front.
    QMap<QString, QString> toEnvironment() const;
    /// What is not in this process's environment is as preset.
    static DriveDescription fromEnvironment();
};

/// Makes a drive the one described. The same description makes the same drive.
/// Throws std::runtime_error for a disc or a file that there is not.
void setUpDrive(SimulatedDrive& drive, const DriveDescription& description);
