#pragma once

#include "base/Settings.h"
#include "disc/DiscModel.h"
#include "rip/RipTypes.h"

#include <QPixmap>
#include <QString>

class CdDrive;

/// What a run was told. The metadata step fills in what the user left empty.
struct RipOrder {
    CdDrive* drive = nullptr; ///< not owned; may be null for a run over an audio file
    DiscToc disc;
    QString outputFolder;
    QString namingRule = QLatin1String(settings::defaultNamingRule);
    QString artist;
    QString album;
    QString year;
    QPixmap cover;
    QString discogsToken;
    int discNumber = 0;
    int discTotal = 0;
    int qualityValue = 300; ///< no run reads it
    OutputFormat outputFormat = OutputFlac;
    QString sourceAudioFile; ///< not empty selects the run over one audio file
    int rereadLimit = 20;    ///< re-reads of one sector at most; at least 1
};
