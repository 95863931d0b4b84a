#pragma once

#include "ui/WindowDriver.h"

#include <QComboBox>
#include <QSpinBox>

#include <functional>

/// The open Settings dialog, by what a person sees of it.
struct SettingsView {
    QDialog* dialog;

    template<typename Widget>
    Widget* at(const char* objectName, int place = 0) const
    {
        return dialog->findChildren<Widget*>(QLatin1String(objectName)).value(place);
    }
    QSpinBox* retries() const { return at<QSpinBox>("settingsSpin", 0); }
    QSpinBox* offset() const { return at<QSpinBox>("settingsSpin", 1); }
    QLineEdit* folder() const { return at<QLineEdit>("pathEdit", 0); }
    QLineEdit* rule() const { return at<QLineEdit>("pathEdit", 1); }
    QComboBox* language() const { return dialog->findChild<QComboBox*>(); }
    QPushButton* ok() const { return at<QPushButton>("nextBtn"); }
    QPushButton* cancel() const { return at<QPushButton>("backBtn"); }
};

/// Opens the dialog by its button and lets the step act on it. A dialog that is
/// still open afterwards is cancelled.
/// @return false when no dialog came
inline bool withSettings(WindowDriver& app, const std::function<void(const SettingsView&)>& step)
{
    bool shown = false;
    const DialogWatcher watcher([&](QDialog* dialog) {
        shown = true;
        step(SettingsView{dialog});
        if (dialog->isVisible())
            dialog->reject();
    });
    WindowDriver::click(app.find<QPushButton>("settingsBtn"));
    return shown;
}
