#pragma once

#include <QString>

#include <functional>

class MainWindow;
class QAbstractButton;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QWidget;

namespace tour {

inline constexpr int lookupLimitMs = 120'000;
inline constexpr int ripLimitMs = 180'000;
inline constexpr int dialogLimitMs = 20'000;
inline constexpr int paintMs = 150;

void say(const QString& line);
/// Ends the process: a tour that is lost has nothing to show.
[[noreturn]] void giveUp(const QString& reason);

} // namespace tour

/// Uses the real window as a person would, and keeps a screenshot where asked.
class TourGuide {
public:
    /// @param shots  the folder for the screenshots
    TourGuide(MainWindow& mainWindow, const QString& language, const QString& shots);

    MainWindow& window() const { return frame; }
    int shotCount() const { return shotsTaken; }

    QWidget* page() const;
    QPushButton* button(const char* name) const;
    QPushButton* buttonBeside(QWidget* edit) const;
    QLineEdit* pathEdit(int place) const;

    void click(QAbstractButton* target) const;
    /// Presses Next once the wizard allows it.
    void next(const QString& pageName);
    /// Keeps what the screen shows where the window stands, dialogs above it included.
    void shoot(const QString& name);
    /// Watches for the next modal dialog until handle returns true. The watch runs
    /// from a timer, since a modal dialog blocks its caller in an event loop of its own.
    void atDialog(std::function<bool(QWidget*)> handle);
    void chooseFile(QAbstractButton* opener, const QString& path, const QString& shotName);

private:
    QStackedWidget* pages() const;

    MainWindow& frame;
    QString language;
    QString shots;
    int shotsTaken = 0;
};
