#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class QDialog;
class QPushButton;
class QTimer;

/// Calls back with the first modal dialog that shows up, for as long as it lives.
class DialogWatcher {
public:
    explicit DialogWatcher(std::function<void(QDialog*)> onDialog);
    ~DialogWatcher();

private:
    std::unique_ptr<QTimer> timer;
};

/// Clicks a button that opens a file dialog, types the path and accepts; an
/// empty path cancels.
/// @return the title of the dialog and the folder that it started in, or nothing
///         when none came
QStringList pickPath(QPushButton* opener, const QString& path);
