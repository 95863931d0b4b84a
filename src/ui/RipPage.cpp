#include "ui/MainWindow.h"

#include "base/Language.h"
#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "ui/AlbumFolder.h"
#include "ui/DrawThrottle.h"
#include "ui/LogViewer.h"
#include "ui/PageParts.h"
#include "ui/RipLog.h"
#include "ui/RipRelay.h"
#include "ui/SectorMap.h"
#include "verify/AccurateRipDatabase.h"

#include <QComboBox>
#include <QDateTime>
#include <QDebug>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QThread>

#include <algorithm>

namespace {

constexpr int storedQuality = 300; ///< carried along; no run reads it
constexpr double singleSpeedKBs = 150.0;

QString idleText()
{
    return pickLang("RIP ボタンで開始", "Press RIP START to begin");
}

QWidget* statCard(const QString& title, const QString& value)
{
    auto* card = new QWidget;
    card->setObjectName(QStringLiteral("statCard"));
    auto* layout = new QVBoxLayout(card);
    layout->setContentsMargins(10, 8, 10, 8);
    layout->setSpacing(2);
    layout->addWidget(pageparts::label(title, "statLabel"));
    layout->addWidget(pageparts::label(value, "statValue"));
    return card;
}

void setCardValue(QWidget* card, const QString& value)
{
    const auto labels = card->findChildren<QLabel*>();
    if (labels.size() >= 2)
        labels[1]->setText(value);
}

void appendAll(LogViewer* log, const QStringList& lines)
{
    for (const QString& line : lines)
        log->append(line);
}

OutputFormat formatNamed(const QString& name)
{
    if (name == QLatin1String("wav"))
        return OutputWav;
    return name == QLatin1String("mp3") ? OutputMp3 : OutputFlac;
}

} // namespace

QWidget* MainWindow::buildRipPage()
{
    auto* page = new QWidget;
    auto* layout = new QHBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildMapPane(), 1);
    layout->addWidget(buildStatisticsPane());
    return page;
}

QWidget* MainWindow::buildMapPane()
{
    sectorMap = new SectorMap;
    sectorMap->setMinimumHeight(200);
    logViewer = new LogViewer;
    sectorMap->setAccessibleName(pickLang("セクタマップ", "Sector map"));

    auto* pane = new QWidget;
    pane->setObjectName(QStringLiteral("leftPane"));
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(24, 20, 16, 20);
    layout->setSpacing(12);
    layout->addWidget(pageparts::label(QStringLiteral("SECTOR MAP"), "sectionLabel"));
    layout->addWidget(sectorMap);
    layout->addWidget(pageparts::label(QStringLiteral("LOG"), "sectionLabel"));
    layout->addWidget(logViewer, 1);
    return pane;
}

QWidget* MainWindow::buildStatisticsPane()
{
    statQuality = statCard(QStringLiteral("Read Quality"), QStringLiteral("—"));
    statSuspect = statCard(QStringLiteral("Suspect Sectors"), QStringLiteral("0"));
    statErrors = statCard(QStringLiteral("Errors"), QStringLiteral("—"));
    statSpeed = statCard(QStringLiteral("Speed"), QStringLiteral("—"));
    auto* cards = new QGridLayout;
    cards->setSpacing(6);
    cards->addWidget(statQuality, 0, 0);
    cards->addWidget(statSuspect, 0, 1);
    cards->addWidget(statErrors, 1, 0);
    cards->addWidget(statSpeed, 1, 1);

    ripProgress = new QProgressBar;
    ripProgress->setObjectName(QStringLiteral("ripProgress"));
    ripProgress->setRange(0, 100);
    ripProgress->setValue(0);
    ripProgress->setTextVisible(false);
    ripProgress->setFixedHeight(4);
    ripProgress->setAccessibleName(pickLang("リッピングの進行状況", "Progress of the rip"));
    progressLabel = pageparts::label(idleText(), "progressLabel");
    progressLabel->setWordWrap(true); // some of its texts are longer than the pane is wide
    ripBtn = pageparts::button(QStringLiteral("▶  RIP START"), "ripBtn");
    ripBtn->setFixedHeight(40);
    connect(ripBtn, &QPushButton::clicked, this, &MainWindow::onRipClicked);

    auto* pane = new QWidget;
    pane->setObjectName(QStringLiteral("rightPane"));
    pane->setFixedWidth(280);
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(12, 20, 20, 20);
    layout->setSpacing(12);
    layout->addWidget(pageparts::label(QStringLiteral("STATISTICS"), "sectionLabel"));
    layout->addLayout(cards);
    layout->addWidget(pageparts::label(QStringLiteral("PROGRESS"), "sectionLabel"));
    layout->addWidget(ripProgress);
    layout->addWidget(progressLabel);
    layout->addStretch();
    layout->addWidget(ripBtn);
    return pane;
}

void MainWindow::resetRipPage()
{
    counterDrawing->cancel();
    sectorMap->setTotalSectors(0);
    logViewer->clear();
    ripProgress->setValue(0);
    progressLabel->setText(idleText());
    ripBtn->setEnabled(true);
    sectorsDone = sectorsTotal = errorSectors = suspectSectors = 0;
    setCardValue(statQuality, QStringLiteral("—"));
    setCardValue(statSuspect, QStringLiteral("0"));
    setCardValue(statErrors, QStringLiteral("0"));
    setCardValue(statSpeed, QStringLiteral("—"));
}

void MainWindow::onRipClicked()
{
    // Borrowed from here on, not from the thread's first turn: what the user
    // clicks in between must not close the source under the rip. An audio file may
    // be converted while an earlier rip still has the drive.
    const bool needsDrive = audioPathEdit->text().isEmpty();
    if (needsDrive && (disc.tracks.isEmpty() || !drive->borrow())) {
        logViewer->clear();
        appendAll(logViewer, riplog::missingSource());
        ripBtn->setEnabled(true);
        return;
    }
    // An open cell editor commits when its table loses the current item.
    trackTable->clearFocus();
    trackTable->setCurrentItem(nullptr);

    logViewer->setFocus(); // a key that is pressed again does no harm there
    ripBtn->setEnabled(false);
    logViewer->clear();
    ripCrcs.clear();
    ripFrameWindows.clear();
    writeHeader();

    counterDrawing->cancel();
    quint32 expected = 0;
    for (const TrackInfo& track : disc.tracks) {
        if (!track.isData)
            expected += track.endLba - track.startLba + 1;
    }
    sectorsTotal = static_cast<qint32>(expected);
    sectorMap->setTotalSectors(sectorsTotal);
    ripProgress->setValue(0);
    sectorsDone = errorSectors = suspectSectors = 0;

    const QString artist = cleanedArtist(artistEdit->text());
    const QString album = cleanedAlbum(albumEdit->text());
    QString folder = outputPathEdit->text() + QLatin1Char('/') + albumFolderName(artist, album);
    if (discTotalSpin->value() > 1) {
        folder += QStringLiteral("/Disc%1").arg(discNumberSpin->value());
        qDebug() << "[RIP] Multi-disc: Disc" << discNumberSpin->value() << "of" << discTotalSpin->value();
    }
    logViewer->append(QStringLiteral("Folder : ") + folder);
    logViewer->append(riplog::cover(!coverPixmap.isNull()));

    mergeTitles();
    if (needsDrive)
        drive->setReadOffset(sampleOffset);
    startRip(folder, artist, album);
}

void MainWindow::writeHeader()
{
    const QString audioPath = audioPathEdit->text();
    riplog::Header header;
    header.startTime = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd  hh:mm:ss"));
    header.album = albumEdit->text();
    header.artist = artistEdit->text();
    header.outputFolder = outputPathEdit->text();
    header.physicalDrive = !drive->isImage() && audioPath.isEmpty();
    header.driveModel = driveModel;
    header.sampleOffset = sampleOffset;
    header.offsetSource = offsetSource;
    header.sourcePath = audioPath.isEmpty() ? cuePathEdit->text() : audioPath;
    header.format = formatCombo->currentText();
    header.namingRule = namingRule;
    appendAll(logViewer, riplog::header(header));
}

void MainWindow::startRip(const QString& folder, const QString& artist, const QString& album)
{
    const RunningRip rip{new RipWorker, new QThread(this), new RipRelay(this)};
    rip.worker->moveToThread(rip.thread);
    rip.worker->configure(drive.get(), disc, folder, artist, album, yearEdit->text(), coverPixmap, QString(),
                          discNumberSpin->value(), discTotalSpin->value(), storedQuality,
                          formatNamed(formatCombo->currentText()), audioPathEdit->text(), maxRetries);
    rip.worker->setNamingRule(namingRule);
    if (audioPathEdit->text().isEmpty())
        rip.worker->adoptBorrowedDrive();

    rip.relay->attach(rip.worker);
    connect(rip.relay, &RipRelay::logLine, logViewer, &LogViewer::append);
    connect(rip.relay, &RipRelay::statusText, progressLabel, &QLabel::setText);
    connect(rip.relay, &RipRelay::sectorDone, this, &MainWindow::handleSector);
    connect(rip.relay, &RipRelay::trackStarted, this, &MainWindow::handleTrackStarted);
    connect(rip.relay, &RipRelay::trackDone, this, &MainWindow::handleTrackDone);
    connect(rip.relay, &RipRelay::finished, this, [this, thread = rip.thread] { finishRip(thread); });
    connect(rip.thread, &QThread::finished, this, [this, thread = rip.thread] { forgetRip(thread); });
    connect(rip.thread, &QThread::started, rip.worker, &RipWorker::run);
    connect(rip.thread, &QThread::finished, rip.thread, &QObject::deleteLater);
    runningRips.push_back(rip);
    rip.thread->start();
}

void MainWindow::finishRip(QThread* thread)
{
    const QPointer<MainWindow> self(this);
    onRipFinished();
    if (!self)
        return;
    for (RunningRip& rip : runningRips) {
        if (rip.thread != thread)
            continue;
        rip.ended = true;
        rip.worker->deleteLater();
        rip.thread->quit();
    }
}

void MainWindow::forgetRip(QThread* thread)
{
    std::erase_if(runningRips, [thread](const RunningRip& rip) {
        if (rip.thread == thread)
            rip.relay->deleteLater();
        return rip.thread == thread;
    });
}

void MainWindow::handleSector(const SectorResult& sector)
{
    sectorMap->addSector(sector);
    if (sector.bad || sector.mismatch)
        ++errorSectors;
    else if (!sector.clean)
        ++suspectSectors;
    const QString warning = riplog::sectorWarning(sector);
    if (!warning.isEmpty())
        logViewer->append(warning);
    ++sectorsDone;
    lastSpeed = sector.speed;
    counterDrawing->request();
}

void MainWindow::drawCounters()
{
    const qint64 progress = sectorsTotal <= 0 ? 0 : qint64{sectorsDone} * 100 / sectorsTotal;
    ripProgress->setValue(static_cast<int>(progress));
    const riplog::Counters counters{sectorsDone, errorSectors, suspectSectors};
    setCardValue(statQuality, counters.readQualityText() + QLatin1Char('%'));
    setCardValue(statSuspect, QString::number(suspectSectors));
    setCardValue(statErrors, QString::number(errorSectors));
    setCardValue(statSpeed, lastSpeed > 0
                                ? QString::number(lastSpeed / singleSpeedKBs, 'f', 1) + QLatin1Char('x')
                                : QStringLiteral("—"));
}

void MainWindow::handleTrackStarted(int number, int total, const QString& title)
{
    progressLabel->setText(
        QStringLiteral("Track %1/%2: %3").arg(QString::number(number), QString::number(total), title));
    logViewer->append(riplog::trackStarted(number, title));
}

void MainWindow::handleTrackDone(const RipResult& result)
{
    logViewer->append(riplog::trackDone(result));
    if (!result.ok)
        return;
    ripCrcs[result.trackNumber] = {result.crcV1, result.crcV2};
    if (!result.frameWindow.isEmpty())
        ripFrameWindows[result.trackNumber] = result.frameWindow;
}

void MainWindow::onRipFinished()
{
    counterDrawing->flush();
    ripProgress->setValue(100);
    QString summary;
    if (sourceIsAudioFile()) {
        progressLabel->setText(
            pickLang("完了  ✦  変換済み（CD読み取りを伴わないためRead Qualityは対象外です）",
                     "Done  ✦  Converted (no CD was read, so Read Quality does not apply)"));
        appendAll(logViewer, riplog::audioFileResult());
        summary = pickLang("変換が完了しました。", "Conversion completed.");
    } else {
        const riplog::Counters counters{sectorsDone, errorSectors, suspectSectors};
        progressLabel->setText(pickLang("完了  ✦  Read Quality %1%", "Done  ✦  Read Quality %1%")
                                   .arg(counters.readQualityText()));
        setCardValue(statQuality, counters.readQualityText() + QLatin1Char('%'));
        appendAll(logViewer, riplog::discResult(counters));
        summary = riplog::discSummary(counters);
    }
    ripBtn->setEnabled(false);
    nextBtn->setEnabled(true);
    if (currentStep == ripStep)
        nextBtn->setFocus();
    QMessageBox::information(this, pickLang("リッピング完了", "Rip Complete"),
                             pickLang("リッピングが完了しました。\n\n", "Ripping is complete.\n\n")
                                 + summary);
}
