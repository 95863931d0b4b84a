#include "ui/RipPage.h"

#include "base/Language.h"
#include "rip/RipWorker.h"
#include "ui/AlbumFolder.h"
#include "ui/DiscInHand.h"
#include "ui/DrawThrottle.h"
#include "ui/LogViewer.h"
#include "ui/PageParts.h"
#include "ui/PageValues.h"
#include "ui/RipLog.h"
#include "ui/RipSettings.h"
#include "ui/RunningRips.h"
#include "ui/SectorMap.h"
#include "verify/AccurateRipDatabase.h"

#include <QDateTime>
#include <QDebug>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>

namespace {

constexpr int storedQuality = 300; ///< carried along; no run reads it

QString idleText()
{
    return pickLang("RIP ボタンで開始", "Press RIP START to begin");
}

OutputFormat formatNamed(const QString& name)
{
    if (name == QLatin1String("wav"))
        return OutputWav;
    return name == QLatin1String("mp3") ? OutputMp3 : OutputFlac;
}

QString folderOf(const RipRequest& request, const QString& artist, const QString& album)
{
    QString folder = request.outputFolder + QLatin1Char('/') + albumFolderName(artist, album);
    const auto& [number, total] = std::pair(request.album.discNumber, request.album.discTotal);
    if (total > 1) {
        folder += QStringLiteral("/Disc%1").arg(number);
        qDebug() << "[RIP] Multi-disc: Disc" << number << "of" << total;
    }
    return folder;
}

} // namespace

RipPage::RipPage(DiscInHand& inHand, const RipSettings& inForce, RunningRips& running, QWidget* parent)
    : QWidget(parent), disc(inHand), settings(inForce), rips(running)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildMapPane(), 1);
    layout->addWidget(buildStatisticsPane());
    counterDrawing = new DrawThrottle([this] { drawCounters(); }, this);
    followRips();
}

QWidget* RipPage::buildMapPane()
{
    sectorMap = new SectorMap;
    sectorMap->setMinimumHeight(200);
    sectorMap->setAccessibleName(pickLang("セクタマップ", "Sector map"));
    logViewer = new LogViewer;

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

QWidget* RipPage::buildStatisticsPane()
{
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
    connect(ripBtn, &QPushButton::clicked, this, &RipPage::ripClicked);

    auto* pane = new QWidget;
    pane->setObjectName(QStringLiteral("rightPane"));
    pane->setFixedWidth(280);
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(12, 20, 20, 20);
    layout->setSpacing(12);
    layout->addWidget(pageparts::label(QStringLiteral("STATISTICS"), "sectionLabel"));
    layout->addLayout(cards.layout());
    layout->addWidget(pageparts::label(QStringLiteral("PROGRESS"), "sectionLabel"));
    layout->addWidget(ripProgress);
    layout->addWidget(progressLabel);
    layout->addStretch();
    layout->addWidget(ripBtn);
    return pane;
}

void RipPage::followRips()
{
    connect(&rips, &RunningRips::logLine, logViewer, &LogViewer::append);
    connect(&rips, &RunningRips::statusText, progressLabel, &QLabel::setText);
    connect(&rips, &RunningRips::sectorsDone, this, &RipPage::countSectors);
    connect(&rips, &RunningRips::trackStarted, this, &RipPage::showTrackStart);
    connect(&rips, &RunningRips::trackDone, this, &RipPage::keepResult);
}

bool RipPage::claimSource(const ChosenSource& source)
{
    // Borrowed from here on, not from the thread's first turn: what the user
    // clicks in between must not close the source under the rip. An audio file may
    // be converted while an earlier rip still has the drive.
    if (source.isAudioFile() || disc.claim())
        return true;
    logViewer->clear();
    appendAll(riplog::missingSource());
    ripBtn->setEnabled(true);
    return false;
}

void RipPage::start(const RipRequest& request)
{
    logViewer->setFocus(); // a key that is pressed again does no harm there
    ripBtn->setEnabled(false);
    ripCrcs.clear();
    ripFrameWindows.clear();
    emptyDisplay(disc.audioSectors());
    writeHeader(request);

    const QString artist = cleanedArtist(request.album.artist);
    const QString album = cleanedAlbum(request.album.title);
    const QString folder = folderOf(request, artist, album);
    logViewer->append(QStringLiteral("Folder : ") + folder);
    logViewer->append(riplog::cover(!request.album.cover.isNull()));

    if (!request.source.isAudioFile())
        disc.drive.setReadOffset(settings.sampleOffset);
    rips.start(workerFor(request, artist, album, folder));
}

void RipPage::emptyDisplay(qint32 sectorsExpected)
{
    counterDrawing->cancel();
    logViewer->clear();
    ripProgress->setValue(0);
    counters = {};
    sectorsTotal = sectorsExpected;
    sectorMap->setTotalSectors(sectorsTotal);
}

void RipPage::writeHeader(const RipRequest& request)
{
    const ChosenSource& source = request.source;
    riplog::Header header;
    header.startTime = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd  hh:mm:ss"));
    header.album = request.album.title;
    header.artist = request.album.artist;
    header.outputFolder = request.outputFolder;
    header.physicalDrive = !disc.drive.isImage() && !source.isAudioFile();
    header.driveModel = disc.driveModel;
    header.sampleOffset = settings.sampleOffset;
    header.offsetSource = disc.offsetSource;
    header.sourcePath = source.isAudioFile() ? source.audioPath : source.cuePath;
    header.format = request.format;
    header.namingRule = settings.namingRule;
    appendAll(riplog::header(header));
}

std::unique_ptr<RipWorker> RipPage::workerFor(const RipRequest& request, const QString& artist,
                                              const QString& album, const QString& folder) const
{
    const AlbumFields& fields = request.album;
    auto worker = std::make_unique<RipWorker>();
    worker->configure(&disc.drive, disc.toc, folder, artist, album, fields.year, fields.cover, QString(),
                      fields.discNumber, fields.discTotal, storedQuality, formatNamed(request.format),
                      request.source.audioPath, settings.maxRetries);
    worker->setNamingRule(settings.namingRule);
    if (!request.source.isAudioFile())
        worker->adoptBorrowedDrive();
    return worker;
}

void RipPage::appendAll(const QStringList& lines)
{
    for (const QString& line : lines)
        logViewer->append(line);
}

void RipPage::appendLog(const QString& line)
{
    logViewer->append(line);
}

void RipPage::countSectors(const QList<SectorResult>& sectors)
{
    for (const SectorResult& sector : sectors) {
        sectorMap->addSector(sector);
        counters.add(sector);
        const QString warning = riplog::sectorWarning(sector);
        if (!warning.isEmpty())
            logViewer->append(warning);
        lastSpeed = sector.speed;
    }
    counterDrawing->request();
}

void RipPage::drawCounters()
{
    const qint64 progress = sectorsTotal <= 0 ? 0 : qint64{counters.done} * 100 / sectorsTotal;
    ripProgress->setValue(static_cast<int>(progress));
    cards.show(counters, lastSpeed);
}

void RipPage::showTrackStart(int number, int total, const QString& title)
{
    progressLabel->setText(
        QStringLiteral("Track %1/%2: %3").arg(QString::number(number), QString::number(total), title));
    logViewer->append(riplog::trackStarted(number, title));
}

void RipPage::keepResult(const RipResult& result)
{
    logViewer->append(riplog::trackDone(result));
    if (!result.ok)
        return;
    ripCrcs[result.trackNumber] = {result.crcV1, result.crcV2};
    if (!result.frameWindow.isEmpty())
        ripFrameWindows[result.trackNumber] = result.frameWindow;
}

void RipPage::showResult(bool ofAudioFile)
{
    counterDrawing->flush();
    ripProgress->setValue(100);
    QString summary;
    if (ofAudioFile) {
        progressLabel->setText(
            pickLang("完了  ✦  変換済み（CD読み取りを伴わないためRead Qualityは対象外です）",
                     "Done  ✦  Converted (no CD was read, so Read Quality does not apply)"));
        appendAll(riplog::audioFileResult());
        summary = pickLang("変換が完了しました。", "Conversion completed.");
    } else {
        progressLabel->setText(pickLang("完了  ✦  Read Quality %1%", "Done  ✦  Read Quality %1%")
                                   .arg(counters.readQualityText()));
        cards.showQuality(counters);
        appendAll(riplog::discResult(counters));
        summary = riplog::discSummary(counters);
    }
    ripBtn->setEnabled(false);
    // A box that came up now would take back the end of the program, which the
    // closing has asked for, and nobody could end it any more.
    if (window()->isHidden() && window()->testAttribute(Qt::WA_WState_ExplicitShowHide))
        return;
    QMessageBox::information(window(), pickLang("リッピング完了", "Rip Complete"),
                             pickLang("リッピングが完了しました。\n\n", "Ripping is complete.\n\n")
                                 + summary);
}

void RipPage::focusNextAct()
{
    (ripBtn->isEnabled() ? static_cast<QWidget*>(ripBtn) : logViewer)->setFocus();
}

void RipPage::reset()
{
    emptyDisplay(0);
    progressLabel->setText(idleText());
    ripBtn->setEnabled(true);
    cards.clear();
}
