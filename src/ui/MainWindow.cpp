#include "ui/MainWindow.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "convert/ConvertDialog.h"
#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "ui/AbruptEnd.h"
#include "ui/DrawThrottle.h"
#include "ui/LogViewer.h"
#include "ui/PageArea.h"
#include "ui/PageParts.h"
#include "ui/ProgramInfo.h"
#include "ui/Resources.h"
#include "ui/RipRelay.h"
#include "ui/SectorMap.h"
#include "ui/StyleSheet.h"

#include <QComboBox>
#include <QDeadlineTimer>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyle>
#include <QTableWidget>
#include <QThread>
#include <QVBoxLayout>

namespace {

QWidget* bar(const char* objectName, int height)
{
    auto* made = new QWidget;
    made->setObjectName(QLatin1String(objectName));
    made->setFixedHeight(height);
    return made;
}

/// Shows for its lifetime that the window waits for something.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

QString whyThereIsNoDisc(DriveFailure failure)
{
    switch (failure) {
    case DriveFailure::becomingReady:
        return pickLang(
            "ドライブの準備がまだできていません。少し待ってから Back、Next の順に押してください。",
            "The drive is still getting ready. Wait a moment, then press Back and Next.");
    case DriveFailure::notReady:
        return pickLang("ディスクが入っていないか、ドライブの準備ができていません。"
                        "ディスクを入れて Back、Next の順に押してください。",
                        "There is no disc in the drive, or it is not ready. "
                        "Insert a disc, then press Back and Next.");
    default:
        return pickLang("ディスクの目次 (TOC) を読み取れませんでした。音楽 CD かどうか確認してください。",
                        "The drive could not read the disc's table of contents. Is it an audio CD?");
    }
}

} // namespace

MainWindow::MainWindow()
    : drive(std::make_unique<CdDrive>()), namingRule(QLatin1String(settings::defaultNamingRule))
{
    initResources();
    setWindowTitle(QLatin1String(programinfo::name));
    setMinimumSize(960, 620);
    resize(1100, 680);
    loadSettings();

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildTitleBar());
    layout->addWidget(buildStepBar());
    layout->addWidget(pageparts::line());
    pages = new QStackedWidget;
    for (QWidget* page :
         {buildSourcePage(), buildOutputPage(), buildMetadataPage(), buildRipPage(), buildVerifyPage()})
        pages->addWidget(new PageArea(page));
    layout->addWidget(pages, 1);
    layout->addWidget(buildNavBar());
    setCentralWidget(central);

    counterDrawing = new DrawThrottle([this] { drawCounters(); }, this);
    setStyleSheet(styleSheetText());
    goToStep(0);
}

MainWindow::~MainWindow()
{
    for (const RunningRip& rip : runningRips) {
        rip.relay->close();
        if (!rip.ended)
            rip.worker->requestStop();
        rip.thread->quit();
    }
    QDeadlineTimer patience(endPatienceMilliseconds);
    for (const RunningRip& rip : runningRips) {
        // An encoder in the middle of a long track, or a drive that hangs, cannot
        // be asked to stop. The process ends under it, before anything that it
        // uses is taken away.
        if (!rip.thread->wait(patience)) {
            QFile::remove(rip.worker->unfinishedFile());
            abruptEnd().endProcess();
            rip.thread->wait();
        }
        if (!rip.ended)
            delete rip.worker;
    }
}

void MainWindow::loadSettings()
{
    const QSettings store;
    maxRetries = store.value(QLatin1String(settings::maxRetries), maxRetries).toInt();
    sampleOffset = store.value(QLatin1String(settings::sampleOffset), sampleOffset).toInt();
    defaultOutputDir = store.value(QLatin1String(settings::defaultDir), QString()).toString();
    namingRule = store.value(QLatin1String(settings::namingRule), namingRule).toString();
    if (namingRule.trimmed().isEmpty())
        namingRule = QLatin1String(settings::defaultNamingRule);
}

QWidget* MainWindow::buildTitleBar()
{
    auto* titleBar = bar("titleBar", 44);
    auto* settingsBtn = pageparts::button(QStringLiteral("⚙  Settings"), "settingsBtn");
    auto* convertBtn = pageparts::button(pickLang("⇄  ファイル変換", "⇄  Convert Files"), "convertBtn");
    settingsBtn->setFixedHeight(28);
    convertBtn->setFixedHeight(28);
    connect(settingsBtn, &QPushButton::clicked, this, &MainWindow::onSettingsClicked);
    connect(convertBtn, &QPushButton::clicked, this, &MainWindow::onConvertClicked);

    auto* row = new QHBoxLayout(titleBar);
    row->setContentsMargins(24, 0, 16, 0);
    row->addWidget(pageparts::label(QStringLiteral("TARVEL CD RIPPER"), "appTitle"), 0, Qt::AlignVCenter);
    row->addWidget(pageparts::label(QLatin1Char('v') + QLatin1String(programinfo::version), "verLabel"), 0,
                   Qt::AlignVCenter);
    row->addStretch();
    row->addWidget(settingsBtn);
    row->addWidget(convertBtn);
    return titleBar;
}

QWidget* MainWindow::buildStepBar()
{
    static const std::array<QString, stepCount> names{QStringLiteral("① Source"), QStringLiteral("② Output"),
                                                      QStringLiteral("③ Metadata"), QStringLiteral("④ RIP"),
                                                      QStringLiteral("⑤ Verify")};

    stepBar = bar("stepBar", 48);
    auto* row = new QHBoxLayout(stepBar);
    row->setContentsMargins(24, 0, 24, 0);
    row->setSpacing(0);
    for (std::size_t step = 0; step < names.size(); ++step) {
        if (step > 0) {
            auto* separator = pageparts::label(QStringLiteral("›"), "stepSep");
            separator->setAlignment(Qt::AlignCenter);
            row->addWidget(separator, 0);
        }
        stepLabels[step] = pageparts::label(names[step], "stepLabel");
        stepLabels[step]->setAlignment(Qt::AlignCenter);
        row->addWidget(stepLabels[step], 1);
    }
    return stepBar;
}

QWidget* MainWindow::buildNavBar()
{
    auto* navBar = bar("navBar", 56);
    backBtn = pageparts::button(QStringLiteral("◀  Back"), "backBtn");
    nextBtn = pageparts::button(QStringLiteral("Next  ▶"), "nextBtn");
    backBtn->setFixedSize(110, 34);
    nextBtn->setFixedSize(110, 34);
    connect(backBtn, &QPushButton::clicked, this, &MainWindow::onBack);
    connect(nextBtn, &QPushButton::clicked, this, &MainWindow::onNext);

    auto* row = new QHBoxLayout(navBar);
    row->setContentsMargins(24, 0, 24, 0);
    row->setSpacing(12);
    row->addWidget(backBtn);
    row->addStretch();
    row->addWidget(nextBtn);
    return navBar;
}

void MainWindow::updateStepIndicator()
{
    for (int step = 0; step < stepCount; ++step) {
        QLabel* label = stepLabels[static_cast<std::size_t>(step)];
        label->setProperty("active", step == currentStep);
        label->setProperty("done", step < currentStep);
        label->style()->unpolish(label);
        label->style()->polish(label);
    }
}

void MainWindow::goToStep(int step)
{
    currentStep = step;
    pages->setCurrentIndex(step);
    updateStepIndicator();
    focusNextAct();
    backBtn->setVisible(step >= 1);
    backBtn->setEnabled(step > 0);

    if (step == metadataStep) {
        enterMetadata();
        return;
    }
    nextBtn->setText(step == verifyStep ? pickLang("完了", "Finish") : QStringLiteral("Next  ▶"));
    nextBtn->setEnabled(step != ripStep);
    if (step == verifyStep) {
        rebuildVerifyTable();
        startVerify();
    }
}

// To be called before the button that was pressed goes off: its focus would fall
// to whatever comes next, and the same key again would press that. On the other
// steps Next stays on, and is what comes next.
void MainWindow::focusNextAct()
{
    if (currentStep == 0)
        (driveCombo->isEnabled() ? static_cast<QWidget*>(driveCombo) : cuePathEdit)->setFocus();
    else if (currentStep == metadataStep)
        albumEdit->setFocus();
    else if (currentStep == ripStep)
        (ripBtn->isEnabled() ? static_cast<QWidget*>(ripBtn) : logViewer)->setFocus();
}

QString MainWindow::chosenDriveLetter() const
{
    const QString letter = driveCombo->currentData().toString();
    const QString text = driveCombo->currentText();
    if (!letter.isEmpty() || text.trimmed().isEmpty())
        return letter;
    static const QRegularExpression windowsLetter(QStringLiteral("([A-Z]:)"));
    return windowsLetter.match(text).captured(1);
}

// The audio file wins over the CUE sheet, and the CUE sheet over the drive,
// whatever the order in which they were chosen. A sheet's tracks were filled
// in when it was picked.
void MainWindow::enterMetadata()
{
    showDriveNotice(QString());
    const QString letter = chosenDriveLetter();
    if (!audioPathEdit->text().isEmpty())
        fillForAudioFile();
    else if (!letter.isEmpty() && cuePathEdit->text().isEmpty())
        enterDrive(letter);
    else if (!cuePathEdit->text().isEmpty() && !disc.tracks.isEmpty())
        startLookup(LookupChain::sheet);
}

void MainWindow::enterDrive(const QString& letter)
{
    // A rip has it. Its disc is on the page, other than after a reset or an audio file.
    if (drive->isBorrowed() && !disc.tracks.isEmpty() && !disc.tracks.first().sourceIsAudioFile)
        return;
    const WaitCursor cursor;
    if (!drive->open(letter)) {
        showDriveNotice(
            pickLang("ドライブを開けませんでした。使用中でないか、権限があるかを確認してください。",
                     "The drive could not be opened. Is it in use, or is the permission missing?"));
        return;
    }
    applyDriveOffset();
    const DiscToc read = drive->readToc();
    if (read.tracks.isEmpty()) {
        showDriveNotice(whyThereIsNoDisc(drive->tocFailure()));
        return;
    }
    disc = read;
    fillTrackTable();
    startLookup(LookupChain::disc);
}

bool MainWindow::sourceIsAudioFile() const
{
    return !audioPathEdit->text().isEmpty() && disc.tracks.size() == 1
           && disc.tracks.first().sourceIsAudioFile;
}

void MainWindow::onNext()
{
    if ((sourceIsAudioFile() && currentStep == ripStep) || currentStep >= verifyStep)
        close();
    else
        goToStep(currentStep + 1);
}

void MainWindow::onBack()
{
    if (currentStep >= 1)
        goToStep(currentStep - 1);
}

void MainWindow::reset()
{
    driveCombo->setCurrentIndex(-1);
    cuePathEdit->clear();
    audioPathEdit->clear();
    for (QLineEdit* field : {albumEdit, artistEdit, yearEdit}) {
        field->clear();
        field->setPlaceholderText(QString());
    }
    trackTable->setRowCount(0);
    showDriveNotice(QString());
    coverPixmap = QPixmap();
    artLabel->setText(QStringLiteral("♪"));
    discNumberSpin->setValue(1);
    discTotalSpin->setValue(1);
    disc = DiscToc();
    drive->close();
    resetRipPage();

    pages->setCurrentIndex(0);
    currentStep = 0;
    updateStepIndicator();
    focusNextAct();
    backBtn->setEnabled(false);
    nextBtn->setText(QStringLiteral("Next  ▶"));
    nextBtn->setEnabled(true);
}

void MainWindow::onConvertClicked()
{
    auto* dialog = new ConvertDialog(this);
    dialog->setModal(true);
    dialog->show();
}
