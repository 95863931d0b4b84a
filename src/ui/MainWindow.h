#pragma once

#include "disc/DiscModel.h"

#include <QMainWindow>
#include <QPixmap>

#include <array>
#include <memory>
#include <vector>

class CdDrive;
class DrawThrottle;
class LogViewer;
class QBoxLayout;
class QComboBox;
class QDialog;
class QGroupBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QTableWidget;
class QThread;
class RipRelay;
class RipWorker;
class SectorMap;
struct MetaResult;
struct RipResult;
struct VerifyResult;

/// The one window: a wizard of five steps, Source, Output, Metadata, RIP and
/// Verify. What the user has chosen stands in its widgets, and `goToStep` is
/// the only way from step to step besides the reset.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    MainWindow();
    /// Stops the rips that run and waits for them: under one that does not stop in
    /// time, the process ends.
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
    static constexpr int metadataStep = 2;
    static constexpr int ripStep = 3;
    static constexpr int verifyStep = 4;

    struct RunningRip {
        RipWorker* worker;
        QThread* thread;
        RipRelay* relay;
        bool ended = false; ///< the worker deletes itself, and the relay has gone quiet
    };

    void loadSettings();

    // The frame: MainWindow.cpp
    QWidget* buildTitleBar();
    QWidget* buildStepBar();
    QWidget* buildNavBar();
    void goToStep(int step);
    void updateStepIndicator();
    void focusNextAct();
    void enterMetadata();
    void enterDrive(const QString& letter);
    QString chosenDriveLetter() const;
    bool sourceIsAudioFile() const;
    void reset();

    // Source: SourcePage.cpp
    QWidget* buildSourcePage();
    QWidget* buildReadModeGroup();
    void refreshDrives();
    void pickCue();
    void pickAudio();
    void applyDriveOffset();

    // Output: OutputPage.cpp
    QWidget* buildOutputPage();
    /// The default folder, or else the music folder.
    QString folderToStartWith() const;
    void updateFolderPreview();

    // Metadata: MetadataPage.cpp
    QWidget* buildMetadataPage();
    QBoxLayout* buildAlbumFields();
    void pickCover();
    void fillTrackTable();
    void fillForAudioFile();
    /// Says why there is no track list; an empty text takes the line away.
    void showDriveNotice(const QString& text);
    void mergeTitles();
    enum class LookupChain { disc, sheet };
    void startLookup(LookupChain chain);
    void applyLookup(LookupChain chain, const MetaResult& found);
    void fillAlbum(const QString& album, const QString& artist, const QString& year);

    // RIP: RipPage.cpp
    QWidget* buildRipPage();
    QWidget* buildMapPane();
    QWidget* buildStatisticsPane();
    void resetRipPage();
    void writeHeader();
    void startRip(const QString& folder, const QString& artist, const QString& album);
    void finishRip(QThread* thread);
    void forgetRip(QThread* thread);
    void handleSector(const SectorResult& sector);
    void handleTrackStarted(int number, int total, const QString& title);
    void handleTrackDone(const RipResult& result);
    void drawCounters();

    // Verify: VerifyPage.cpp
    QWidget* buildVerifyPage();
    void rebuildVerifyTable();
    void startVerify();
    struct Verification;
    void finishVerify(const Verification& started, const VerifyResult& result);
    void showVerdict(const Verification& started, const VerifyResult& result);
    void showNoVerdict(const Verification& started, const VerifyResult& result);

    // Settings: SettingsDialog.cpp
    struct SettingsFields;
    QWidget* buildSettingsTab(SettingsFields& fields);
    QGroupBox* buildReadSettings(SettingsFields& fields);
    QGroupBox* buildOutputSettings(SettingsFields& fields);
    void applySettings(const SettingsFields& fields);
    void acceptSettings(const SettingsFields& fields, QDialog* dialog);

    QWidget* stepBar = nullptr;
    std::array<QLabel*, stepCount> stepLabels{};
    QPushButton* backBtn = nullptr;
    QPushButton* nextBtn = nullptr;
    QStackedWidget* pages = nullptr;
    int currentStep = 0;

    QComboBox* driveCombo = nullptr;
    QLineEdit* cuePathEdit = nullptr;
    QLineEdit* audioPathEdit = nullptr;

    QLineEdit* outputPathEdit = nullptr;
    QComboBox* formatCombo = nullptr; ///< hidden; its text is the format chosen
    QLabel* folderPreview = nullptr;

    QLabel* artLabel = nullptr;
    QLineEdit* albumEdit = nullptr;
    QLineEdit* artistEdit = nullptr;
    QLineEdit* yearEdit = nullptr;
    QSpinBox* discNumberSpin = nullptr;
    QSpinBox* discTotalSpin = nullptr;
    QTableWidget* trackTable = nullptr;
    QLabel* driveNotice = nullptr; ///< hidden while there is nothing to say

    SectorMap* sectorMap = nullptr;
    QProgressBar* ripProgress = nullptr;
    QLabel* progressLabel = nullptr;
    QWidget* statQuality = nullptr;
    QWidget* statSuspect = nullptr;
    QWidget* statErrors = nullptr;
    QWidget* statSpeed = nullptr;
    LogViewer* logViewer = nullptr;
    QPushButton* ripBtn = nullptr;

    QLabel* verifyResult = nullptr;
    QLabel* verifyDetail = nullptr;
    QProgressBar* verifyProgress = nullptr;
    QTableWidget* verifyTable = nullptr;

    std::unique_ptr<CdDrive> drive; ///< left behind when a rip does not end in time
    DiscToc disc;
    QPixmap coverPixmap; ///< full size; null for none

    qint32 sectorsDone = 0;
    qint32 sectorsTotal = 0;
    qint32 errorSectors = 0;
    qint32 suspectSectors = 0;
    quint32 lastSpeed = 0; ///< KiB/s, for the next drawing

    int maxRetries = 20;
    int sampleOffset = 0;
    QString defaultOutputDir;
    QString namingRule;
    QString driveModel;
    QString offsetSource;

    DrawThrottle* counterDrawing = nullptr;
    std::vector<RunningRip> runningRips;
};
