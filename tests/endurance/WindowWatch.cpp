#include "endurance/WindowWatch.h"

#include "base/Language.h"
#include "disc/DiscModel.h"
#include "endurance/LogGrammar.h"
#include "rip/RipTypes.h"
#include "ui/MetadataPage.h"
#include "ui/RunningRips.h"
#include "ui/SectorMap.h"

#include <QApplication>
#include <QImage>
#include <QMessageBox>
#include <QProgressBar>
#include <QResizeEvent>
#include <QStackedWidget>
#include <QTextDocument>
#include <QTextEdit>

namespace {

constexpr int metadataStep = 2;
constexpr int ripStep = 3;
constexpr int verifyStep = 4;

void expect(QStringList& wrong, bool holds, const QString& otherwise)
{
    if (!holds)
        wrong << otherwise;
}

QString onOrOff(const char* what, bool wanted)
{
    return QStringLiteral("%1 is to be %2").arg(QLatin1String(what), wanted ? "on" : "off");
}

} // namespace

WindowWatch::WindowWatch(WindowDriver& driver, const StepPace& stepPace) : app(driver), pace(stepPace)
{
    map = app.window().findChild<SectorMap*>();
    map->installEventFilter(this);
    followButtons();
    followRips();
}

void WindowWatch::followButtons()
{
    connect(app.window().findChild<QStackedWidget*>(), &QStackedWidget::currentChanged, this,
            [this](int step) {
                if (step != metadataStep)
                    nextOn = step != ripStep;
            });
    auto* metadata = app.window().findChild<MetadataPage*>();
    connect(metadata, &MetadataPage::lookupStarted, this, [this] { nextOn = false; });
    connect(metadata, &MetadataPage::lookupEnded, this, [this] { nextOn = nextOn || app.step() != ripStep; });
    // Made after the window's own, so called after them.
    connect(app.rip(), &QPushButton::clicked, this, [this] { ripWasClicked(); });
    connect(app.reset(), &QPushButton::clicked, this, [this] {
        ripOn = true;
        nextOn = true;
        emptyDisplay();
    });
}

void WindowWatch::followRips()
{
    auto* rips = app.window().findChild<RunningRips*>();
    connect(rips, &RunningRips::sectorsDone, this, [this](const QList<SectorResult>& done) {
        for (const SectorResult& sector : done) {
            ++sectors;
            if (sector.bad || sector.mismatch)
                ++errors;
            else if (!sector.clean)
                ++suspects;
        }
    });
    connect(rips, &RunningRips::trackDone, this,
            [this](const RipResult& result) { saved += result.ok ? 1 : 0; });
}

void WindowWatch::emptyDisplay()
{
    sectors = errors = suspects = saved = 0;
    mapIsWhole = true;
}

void WindowWatch::ripWasClicked()
{
    const bool started = loggrammar::isOfRip(app.logLines());
    ripOn = !started;
    saved = 0;
    if (!started)
        return;
    emptyDisplay();
    ++allStarts;
    alone = startsUnderWay++ == 0;
}

bool WindowWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == map && event->type() == QEvent::Resize)
        mapIsWhole = false;
    return false;
}

void WindowWatch::observe()
{
    constexpr char seen[] = "seen by the watch";
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (!box || !box->isVisible() || box->property(seen).toBool())
            continue;
        box->setProperty(seen, true);
        if (box->windowTitle() == pickLang("リッピング完了", "Rip Complete"))
            ripHasEnded();
    }
}

void WindowWatch::ripHasEnded()
{
    nextOn = true;
    ripOn = false;
    expect(atTheEnd, startsUnderWay > 0, QStringLiteral("a rip ended that had not started"));
    if (alone && startsUnderWay == 1) {
        checkResult(app.logLines());
        checkMap();
    }
    --startsUnderWay;
}

QStringList WindowWatch::complaints()
{
    observe();
    QStringList wrong = std::exchange(atTheEnd, {});
    checkButtons(wrong);
    checkDialogs(wrong);
    checkLog(wrong);
    expect(wrong, !pace.hadTwoAtOnce(), QStringLiteral("two rips had the drive at once"));
    expect(wrong, !QApplication::overrideCursor(), QStringLiteral("the wait cursor is still there"));
    return wrong;
}

void WindowWatch::checkButtons(QStringList& wrong)
{
    const int step = app.step();
    expect(wrong, app.next()->isEnabled() == nextOn, onOrOff("Next", nextOn));
    expect(wrong, app.rip()->isEnabled() == ripOn, onOrOff("RIP START", ripOn));
    expect(wrong, app.back()->isEnabled() == (step > 0), onOrOff("Back", step > 0));
    expect(wrong, app.back()->isHidden() == (step == 0),
           QStringLiteral("Back is hidden on the first step alone"));
    const QString wanted = step == verifyStep ? pickLang("完了", "Finish") : QStringLiteral("Next  ▶");
    // Left as it was on the Metadata step, where it can't have been Finish.
    expect(wrong, app.next()->text() == wanted, QStringLiteral("Next is to read ") + wanted);
    const auto labels = app.window().findChildren<QLabel*>(QStringLiteral("stepLabel"));
    for (int place = 0; place < labels.size(); ++place)
        expect(wrong,
               labels[place]->property("active").toBool() == (place == step)
                   && labels[place]->property("done").toBool() == (place < step),
               QStringLiteral("the step bar is at another step"));
}

void WindowWatch::checkDialogs(QStringList& wrong)
{
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        if (!widget->isVisible() || !qobject_cast<const QDialog*>(widget))
            continue;
        const QWidget* owner = widget->parentWidget();
        expect(wrong, owner && owner->window()->isVisible(),
               QStringLiteral("a dialog without an owner: ") + widget->windowTitle());
    }
}

void WindowWatch::checkLog(QStringList& wrong)
{
    const QTextDocument* document = app.pageAt(ripStep)->findChild<QTextEdit*>()->document();
    if (document->revision() == checkedRevision)
        return;
    checkedRevision = document->revision();
    const QStringList lines = app.logLines();
    wrong << loggrammar::complaints(lines, alone);
    const auto written = lines.filter(QStringLiteral(": ✦ saved")).size();
    expect(wrong, written == saved, QStringLiteral("%1 tracks saved, %2 in the log").arg(saved).arg(written));
}

void WindowWatch::checkResult(const QStringList& log)
{
    const auto numberIn = [&log](const char* words) {
        const QStringList found = log.filter(QLatin1String(words));
        return found.isEmpty() ? -1 : found.last().section(u':', 1).trimmed().section(u' ', 0, 0).toInt();
    };
    // The result of an audio file names no sectors.
    if (log.filter(QStringLiteral("  Read Quality :")).isEmpty())
        return;
    expect(atTheEnd, numberIn("  Errors       :") == errors, QStringLiteral("the log counts other errors"));
    expect(atTheEnd, numberIn("  Suspect      :") == suspects,
           QStringLiteral("the log counts other suspects"));
    // A count comes with the first sector.
    if (sectors > 0) {
        expect(atTheEnd, app.card(1) == QString::number(suspects),
               QStringLiteral("%1 suspects, on the card %2").arg(suspects).arg(app.card(1)));
        expect(atTheEnd, app.card(2) == QString::number(errors),
               QStringLiteral("%1 errors, on the card %2").arg(errors).arg(app.card(2)));
    }
    expect(atTheEnd, app.onPage<QProgressBar>(ripStep, "ripProgress")->value() == 100,
           QStringLiteral("the progress is to be at its end"));
}

// The discs are so short that each sector has a cell of its own.
void WindowWatch::checkMap()
{
    if (!mapIsWhole)
        return;
    const int painted = paintedCells();
    expect(atTheEnd, !mapIsWhole || painted == sectors,
           QStringLiteral("%1 sectors, %2 on the map").arg(sectors).arg(painted));
}

int WindowWatch::paintedCells()
{
    constexpr int cellPixels = 5;
    constexpr QRgb notRead = 0xff0a0a10;
    const int columns = map->width() / cellPixels;
    const int rows = map->height() / cellPixels;
    const int width = map->width() / columns;
    const int height = map->height() / rows;
    const QImage picture = map->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    int painted = 0;
    for (int cell = 0; cell < columns * rows; ++cell) {
        const QPoint middle(cell % columns * width + width / 2, cell / columns * height + height / 2);
        painted += picture.pixel(middle) == notRead ? 0 : 1;
    }
    return painted;
}
