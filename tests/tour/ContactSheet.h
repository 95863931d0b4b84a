#pragma once

#include <QList>
#include <QPixmap>
#include <QString>

/// A picture of the window or of a dialog, with what it shows.
struct Shot {
    QString caption;
    QPixmap picture;
};

/// Puts shots side by side on one picture, each at most `width` points wide,
/// and saves it; false when it can't be written.
bool saveContactSheet(const QString& path, const QList<Shot>& shots, int columns = 3, int width = 620);
