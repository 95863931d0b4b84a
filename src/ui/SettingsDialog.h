#pragma once

#include <QDialog>

class DiscInHand;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QSpinBox;
struct RipSettings;

/// Edits the settings in force, and tells what the program is. Nothing is changed
/// before OK.
class SettingsDialog : public QDialog {
    Q_OBJECT
public:
    /// @param disc  tells of the drive, and keeps an offset set for it
    SettingsDialog(RipSettings& settings, DiscInHand& disc, QWidget* parent = nullptr);

Q_SIGNALS:
    /// The default folder is another one now.
    void folderChanged(const QString& folder);
    /// The settings in force are those of the dialog, and stored.
    void applied();

private:
    QWidget* buildSettingsTab();
    QGroupBox* buildReadSettings();
    QGroupBox* buildOutputSettings();
    QGroupBox* buildLanguageSettings();
    QWidget* buildNavBar();
    QWidget* buildFolderButton();
    void applySettings();
    void takeFolder(const QString& path);
    void acceptSettings();
    void askForRestart();

    RipSettings& settings;
    DiscInHand& disc;
    QSpinBox* retries = nullptr;
    QSpinBox* offset = nullptr;
    QLineEdit* folder = nullptr;
    QLineEdit* rule = nullptr;
    QComboBox* language = nullptr;
};
