#pragma once

#include <QWidget>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
struct RipSettings;

/// The step where the user says where the files go, and in which format.
class OutputPage : public QWidget {
    Q_OBJECT
public:
    /// @param settings  the ones in force; they outlive the page
    explicit OutputPage(const RipSettings& settings, QWidget* parent = nullptr);

    QString folder() const;
    void setFolder(const QString& path);
    /// "flac", "wav" or "mp3".
    QString format() const;
    /// Lets the user pick the folder.
    void browse();
    /// Shows how files are named by the rule now in force.
    void updatePreview();

Q_SIGNALS:
    void browseClicked();

private:
    QGroupBox* buildFolderGroup();
    QGroupBox* buildFormatGroup();
    QGroupBox* buildPreviewGroup();

    const RipSettings& settings;
    QLineEdit* outputPathEdit = nullptr;
    QComboBox* formatCombo = nullptr; ///< hidden; its text is the format chosen
    QLabel* folderPreview = nullptr;
};
