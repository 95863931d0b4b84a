#pragma once

#include "endurance/StepPace.h"
#include "endurance/WalkStage.h"
#include "endurance/WindowWatch.h"
#include "ui/WindowDriver.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <random>

class QFileDialog;

/// So many clicks and keys at random, all from one seed, in the window or whatever
/// dialog is in front of it. They know the way, and are drawn to one step of the
/// wizard and then to another; a window that closes under them is followed by a new
/// one. After each, all that the watch knows has to hold.
class Walk {
public:
    Walk(const WalkStage& stage, quint32 seed);

    /// @return what did not hold, with what was done last; empty when all went well
    QStringList take(int steps);

    int windows() const { return windowCount; }
    int rips() const { return ripCount; }

private:
    void openWindow();
    void closeWindow();
    void insertDisc();
    void step();
    void look();
    void expectTheEnd();
    int pauseMilliseconds();

    void act();
    void actInPopup(QWidget* popup);
    void actInPicker(QFileDialog* picker);
    void actInBox(QDialog* box);
    void actInSettings(QDialog* dialog);
    void actInConversion(QDialog* dialog);
    void actInWindow();
    void actOnPage();
    void actOnSource();
    void actOnOutput();
    void actOnMetadata();
    void actOnRip();
    void chooseHeading();
    void goTowardsHeading();
    void disturb();

    void click(QWidget* widget, const QString& what);
    void clickAnything(QWidget* top);
    void pressKey(QWidget* top);
    void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(QLineEdit* field, const QString& text);

    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }
    bool chance(int percent) { return below(100) < percent; }
    template<typename List>
    auto oneOf(const List& list)
    {
        return list[below(static_cast<int>(list.size()))];
    }

    const WalkStage& stage;
    std::mt19937 random;
    StepPace pace;
    std::unique_ptr<WindowDriver> app;
    std::unique_ptr<WindowWatch> watch;
    int left = 0;
    int heading = 0;
    int patience = 0; ///< clicks until another step is headed for
    int windowCount = 0;
    int ripCount = 0;
    QStringList done; ///< the last steps
    QStringList wrong;
};
