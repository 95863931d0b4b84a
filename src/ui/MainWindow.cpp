#include "ui/MainWindow.h"

#include "base/Language.h"
#include "convert/ConvertDialog.h"
#include "ui/DiscInHand.h"
#include "ui/MetadataPage.h"
#include "ui/OutputPage.h"
#include "ui/PageArea.h"
#include "ui/PageParts.h"
#include "ui/ProgramInfo.h"
#include "ui/Resources.h"
#include "ui/RipPage.h"
#include "ui/RipSettings.h"
#include "ui/RunningRips.h"
#include "ui/SettingsDialog.h"
#include "ui/SourcePage.h"
#include "ui/StyleSheet.h"
#include "ui/TrackTable.h"
#include "ui/VerifyPage.h"

#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr int metadataStep = 2;
constexpr int ripStep = 3;
constexpr int verifyStep = 4;

QWidget* bar(const char* objectName, int height)
{
    auto* made = new QWidget;
    made->setObjectName(QLatin1String(objectName));
    made->setFixedHeight(height);
    return made;
}

} // namespace

struct MainWindow::Rooms {
    explicit Rooms(MainWindow* window) : rips(window) {}

    RipSettings settings = RipSettings::load();
    DiscInHand disc{settings};
    RunningRips rips; ///< go before the disc that they read

    SourcePage* source = new SourcePage(disc);
    OutputPage* output = new OutputPage(settings);
    MetadataPage* metadata = new MetadataPage(disc);
    RipPage* rip = new RipPage(disc, settings, rips);
    VerifyPage* verify = new VerifyPage;
};

MainWindow::MainWindow()
{
    initResources();
    setWindowTitle(QLatin1String(programinfo::name));
    setMinimumSize(960, 620);
    resize(1100, 680);

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildTitleBar());
    layout->addWidget(buildStepBar());
    layout->addWidget(pageparts::line());
    layout->addWidget(buildPages(), 1);
    layout->addWidget(buildNavBar());
    setCentralWidget(central);

    connectPages();
    setStyleSheet(styleSheetText());
    goToStep(0);
}

MainWindow::~MainWindow() = default;

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

QWidget* MainWindow::buildPages()
{
    rooms = std::make_unique<Rooms>(this);
    pages = new QStackedWidget;
    for (QWidget* page : std::initializer_list<QWidget*>{rooms->source, rooms->output, rooms->metadata,
                                                         rooms->rip, rooms->verify})
        pages->addWidget(new PageArea(page));
    return pages;
}

void MainWindow::connectPages()
{
    connect(rooms->source, &SourcePage::sheetRead, rooms->metadata, &MetadataPage::showSheet);
    connect(rooms->source, &SourcePage::resetClicked, this, [this] { reset(); });
    connect(rooms->output, &OutputPage::browseClicked, this, &MainWindow::onBrowseOutput);
    connect(rooms->metadata, &MetadataPage::lookupStarted, this, [this] { nextBtn->setEnabled(false); });
    connect(rooms->metadata, &MetadataPage::lookupEnded, this, [this] {
        // There only the end of a rip does that.
        if (currentStep != ripStep)
            nextBtn->setEnabled(true);
    });
    connect(rooms->rip, &RipPage::ripClicked, this, &MainWindow::onRipClicked);
    connect(&rooms->rips, &RunningRips::finished, this, &MainWindow::onRipFinished);
    connect(rooms->verify, &VerifyPage::logLine, rooms->rip, &RipPage::appendLog);
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
        rooms->metadata->enter(rooms->source->chosen());
        return;
    }
    nextBtn->setText(step == verifyStep ? pickLang("完了", "Finish") : QStringLiteral("Next  ▶"));
    nextBtn->setEnabled(step != ripStep);
    if (step == verifyStep) {
        const DiscToc& disc = rooms->disc.toc;
        rooms->verify->showTracks(disc.tracks.isEmpty() ? rooms->metadata->tracks()
                                                        : tracktable::rowsOf(disc));
        startVerify();
    }
}

void MainWindow::startVerify()
{
    rooms->verify->start(rooms->disc.toc);
}

// To be called before the button that was pressed goes off: its focus would fall
// to whatever comes next, and the same key again would press that. On the other
// steps Next stays on, and is what comes next.
void MainWindow::focusNextAct()
{
    if (currentStep == 0)
        rooms->source->focusFirst();
    else if (currentStep == metadataStep)
        rooms->metadata->focusFirst();
    else if (currentStep == ripStep)
        rooms->rip->focusNextAct();
}

bool MainWindow::sourceIsAudioFile() const
{
    return rooms->source->chosen().isAudioFile() && rooms->disc.isAudioFile();
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

void MainWindow::onRipClicked()
{
    const ChosenSource source = rooms->source->chosen();
    if (!rooms->rip->claimSource(source))
        return;
    rooms->metadata->commitTitles();
    rooms->rip->start({source, rooms->output->folder(), rooms->output->format(), rooms->metadata->album()});
}

void MainWindow::onRipFinished()
{
    nextBtn->setEnabled(true);
    if (currentStep == ripStep)
        nextBtn->setFocus();
    rooms->rip->showResult(sourceIsAudioFile());
}

void MainWindow::onBrowseOutput()
{
    rooms->output->browse();
}

void MainWindow::onSettingsClicked()
{
    auto* dialog = new SettingsDialog(rooms->settings, rooms->disc, this);
    connect(dialog, &SettingsDialog::folderChanged, rooms->output, &OutputPage::setFolder);
    connect(dialog, &SettingsDialog::applied, rooms->output, &OutputPage::updatePreview);
    dialog->exec();
}

void MainWindow::onConvertClicked()
{
    auto* dialog = new ConvertDialog(this);
    dialog->setModal(true);
    dialog->show();
}

void MainWindow::reset()
{
    rooms->source->clear();
    rooms->metadata->clear();
    rooms->disc.clear();
    rooms->rip->reset();

    pages->setCurrentIndex(0);
    currentStep = 0;
    updateStepIndicator();
    focusNextAct();
    backBtn->setEnabled(false);
    nextBtn->setText(QStringLiteral("Next  ▶"));
    nextBtn->setEnabled(true);
}
