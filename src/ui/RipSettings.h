#pragma once

#include "base/Settings.h"

#include <QString>

/// What the user sets in the Settings dialog, as it is in force.
struct RipSettings {
    int maxRetries = 20;
    int sampleOffset = 0;                                            ///< read offset, in stereo frames
    QString defaultFolder;                                           ///< empty until one has been chosen
    QString namingRule = QLatin1String(settings::defaultNamingRule); ///< never empty

    static RipSettings load();
    void store() const;

    /// A rule of blanks alone is the default rule.
    void setNamingRule(const QString& rule);
    /// The default folder, or else the music folder.
    QString folderToStartWith() const;
};
