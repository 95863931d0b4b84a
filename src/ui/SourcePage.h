#pragma once

#include "ui/PageValues.h"

#include <QWidget>

class DiscInHand;
class QComboBox;
class QGroupBox;
class QLineEdit;

/// The step where the user says what to rip: a drive, a CUE sheet or one audio
/// file. A sheet's disc is in hand from the moment it is picked; a drive and an
/// audio file are looked at on the Metadata step.
class SourcePage : public QWidget {
    Q_OBJECT
public:
    explicit SourcePage(DiscInHand& disc, QWidget* parent = nullptr);

    ChosenSource chosen() const;
    void focusFirst();
    /// Takes back what was chosen; the drives stay in their list.
    void clear();

Q_SIGNALS:
    /// The disc in hand is that of the sheet just picked.
    void sheetRead();
    void resetClicked();

private:
    QGroupBox* buildDriveGroup();
    QGroupBox* buildSheetGroup();
    QGroupBox* buildAudioGroup();
    void refreshDrives();
    void pickCue();
    void pickAudio();
    QString driveLetter() const;

    DiscInHand& disc;
    QComboBox* driveCombo = nullptr;
    QLineEdit* cuePathEdit = nullptr;
    QLineEdit* audioPathEdit = nullptr;
};
