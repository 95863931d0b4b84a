#pragma once

#include "ui/AbruptEnd.h"
#include "ui/MainWindow.h"

#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QTableWidget>

#include "support/DialogWatcher.h"
#include "ui/DriveShelf.h"

#include <memory>
#include <utility>

/// A rip that does not stop fails its test program.
class FailingEnd : public AbruptEnd {
public:
    void endProcess() override;
};

/// Takes a real window through its steps as a user would: by clicks and typed
/// paths. Widgets are found by object name and place, as a style class may be
/// shared.
class WindowDriver {
public:
    /// @param languageMode  1 Japanese, 2 English
    /// @param letters       the drives that are there
    explicit WindowDriver(int languageMode = 2, const QStringList& letters = {});
    ~WindowDriver();

    DriveShelf& shelf() { return drives; }
    MainWindow& window() { return *frame; }
    /// Destroys the window, whatever it is doing.
    /// @return how long that took, in milliseconds
    qint64 destroyWindow();
    /// Hands the window over; nothing else may be asked of this afterwards.
    std::unique_ptr<MainWindow> takeWindow() { return std::move(frame); }

    template<typename Widget>
    Widget* find(const char* objectName, int place = 0)
    {
        return frame->findChildren<Widget*>(QLatin1String(objectName)).value(place);
    }
    template<typename Widget>
    Widget* onPage(int page, const char* objectName, int place = 0)
    {
        return pageAt(page)->findChildren<Widget*>(QLatin1String(objectName)).value(place);
    }

    QWidget* pageAt(int step);
    int step();
    QPushButton* next() { return find<QPushButton>("nextBtn"); }
    QPushButton* back() { return find<QPushButton>("backBtn"); }
    QPushButton* rip() { return find<QPushButton>("ripBtn"); }
    QPushButton* reset() { return find<QPushButton>("resetBtn"); }
    QLineEdit* cuePath() { return onPage<QLineEdit>(0, "pathEdit", 0); }
    QLineEdit* audioPath() { return onPage<QLineEdit>(0, "pathEdit", 1); }
    QLineEdit* outputPath() { return onPage<QLineEdit>(1, "pathEdit", 0); }
    QLineEdit* album() { return onPage<QLineEdit>(2, "formEdit", 0); }
    QLineEdit* artist() { return onPage<QLineEdit>(2, "formEdit", 1); }
    QLineEdit* year() { return onPage<QLineEdit>(2, "formEdit", 2); }
    QTableWidget* tracks() { return onPage<QTableWidget>(2, "trackTable"); }
    QTableWidget* verdicts() { return onPage<QTableWidget>(4, "trackTable"); }

    static void click(QPushButton* button);
    /// Clicks Next until the step is reached; a lookup of the Metadata step is
    /// waited for, there too.
    void advanceTo(int step);

    /// Clicks a button that opens a file dialog, types the path and accepts; an
    /// empty path cancels.
    void pickFile(QPushButton* opener, const QString& path);
    void pickCue(const QString& path) { pickFile(onPage<QPushButton>(0, "browseBtn", 1), path); }
    void pickAudio(const QString& path) { pickFile(onPage<QPushButton>(0, "browseBtn", 2), path); }
    void pickCover(const QString& path) { pickFile(onPage<QPushButton>(2, "browseBtn", 0), path); }

    /// Clicks RIP START and waits for the result box, which it dismisses.
    /// @return the title and the text of the box, or nothing when none came
    QStringList runRip(int patienceMilliseconds = 60'000);

    QStringList logLines();
    /// The value label of a card: 0 quality, 1 suspects, 2 errors, 3 speed.
    QString card(int place);
    QString cell(QTableWidget* table, int row, int column);

private:
    DriveShelf drives;
    DrivePlatformOverride platform{drives};
    FailingEnd failingEnd;
    AbruptEndOverride end{failingEnd};
    std::unique_ptr<MainWindow> frame;
};
