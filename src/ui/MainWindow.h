#pragma once

#include <QMainWindow>

#include <array>
#include <memory>

class QLabel;
class QPushButton;
class QStackedWidget;

/// The one window: the frame of a wizard of five steps, Source, Output, Metadata,
/// RIP and Verify. `goToStep` is the only way from step to step besides the reset,
/// and what one page needs of another goes through here.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    MainWindow();
    /// Waits for the rips under way: RunningRips.
    ~MainWindow() override;

private Q_SLOTS:
    void onNext();
    void onBack();
    void onRipClicked();
    void onRipFinished();
    void onBrowseOutput();
    void onSettingsClicked();
    void onConvertClicked();

private:
    static constexpr int stepCount = 5;

    QWidget* buildTitleBar();
    QWidget* buildStepBar();
    QWidget* buildNavBar();
    QWidget* buildPages();
    void connectPages();

    void goToStep(int step);
    void updateStepIndicator();
    void focusNextAct();
    void startVerify();
    bool sourceIsAudioFile() const;
    void reset();

    QWidget* stepBar = nullptr;
    std::array<QLabel*, stepCount> stepLabels{};
    QPushButton* backBtn = nullptr;
    QPushButton* nextBtn = nullptr;
    QStackedWidget* pages = nullptr; ///< the page's place is its step's number
    int currentStep = 0;

    struct Rooms;
    std::unique_ptr<Rooms> rooms; ///< the pages, and what they share
};
