#pragma once

#include "ui/PageValues.h"

#include <QWidget>

class DiscInHand;
class QBoxLayout;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTableWidget;
struct MetaResult;
struct MusicBrainzResult;

/// The step where the user checks and edits what the disc in hand is called. On
/// entry it takes the disc of a drive or the name of an audio file, and asks the
/// services about it.
class MetadataPage : public QWidget {
    Q_OBJECT
public:
    explicit MetadataPage(DiscInHand& disc, QWidget* parent = nullptr);

    void enter(const ChosenSource& source);
    /// Shows the sheet in hand. Its cover is asked for here and now.
    void showSheet();

    AlbumFields album() const;
    QList<TrackRow> tracks() const;
    /// Commits a cell that is being edited, and gives the disc in hand the titles.
    void commitTitles();

    void focusFirst();
    void clear();

Q_SIGNALS:
    void lookupStarted();
    /// What was found stands on the page.
    void lookupEnded();

private:
    enum class LookupChain { disc, sheet };

    QBoxLayout* buildCover();
    QBoxLayout* buildAlbumFields();
    QBoxLayout* buildListTitle();
    void enterDrive(const QString& letter);
    void enterAudioFile(const QString& path);
    void pickCover();
    /// Says why there is no track list; an empty text takes the line away.
    void showDriveNotice(const QString& text);
    void startLookup(LookupChain chain);
    void applyLookup(LookupChain chain, const MetaResult& found);
    void fillAlbum(const QString& album, const QString& artist, const QString& year);
    void showPlaceInSet(const MusicBrainzResult& release);
    void showMiss();

    DiscInHand& disc;
    QLabel* artLabel = nullptr;
    QLineEdit* albumEdit = nullptr;
    QLineEdit* artistEdit = nullptr;
    QLineEdit* yearEdit = nullptr;
    QSpinBox* discNumberSpin = nullptr;
    QSpinBox* discTotalSpin = nullptr;
    QTableWidget* trackTable = nullptr;
    QLabel* driveNotice = nullptr; ///< hidden while there is nothing to say
    QPixmap coverPixmap;           ///< full size; null for none
};
