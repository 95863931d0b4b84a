#pragma once

#include <QDialog>
#include <QList>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

/// Converts the audio files of one folder into one format. The run goes on the
/// GUI thread and lets events through between files; closing the dialog hides
/// it and does not end the run, closing the window that it belongs to does.
class ConvertDialog : public QDialog {
    Q_OBJECT
public:
    explicit ConvertDialog(QWidget* parent = nullptr);

private Q_SLOTS:
    void onBrowseInput();
    void onBrowseOutput();
    void onConvertClicked();

private:
    QHBoxLayout* row(const QString& text, QWidget* field, QPushButton* browse = nullptr);
    void updateDsdWarning();
    void showStatus(const QString& text);
    void growToText();
    void resetForm();
    bool foldersAreThere();
    void run(const QString& sourceFolder);

    QLineEdit* sourceEdit = nullptr;
    QPushButton* sourceBrowse = nullptr;
    QComboBox* formatCombo = nullptr;
    QLineEdit* outputEdit = nullptr;
    QPushButton* outputBrowse = nullptr;
    QLabel* dsdWarning = nullptr;
    QPushButton* convertButton = nullptr;
    bool finished = false; ///< a run has ended; the next click resets the form
    QLabel* statusLabel = nullptr;
    QList<QLabel*> fieldLabels;
};
