// Walks the real window through a whole rip, as a person would, and keeps a
// screenshot of each step. Exits with 0 when the wizard came to its last page.

#include "base/Language.h"
#include "ui/Fonts.h"
#include "support/OfflineServices.h"
#include "ui/MainWindow.h"
#include "ui/ProgramInfo.h"
#include "ui/Resources.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>
#include <QTextStream>
#include <QTimer>

#include <cstdlib>
#include <functional>

namespace {

constexpr int lookupLimitMs = 120'000;
constexpr int ripLimitMs = 180'000;
constexpr int dialogLimitMs = 20'000;
constexpr int pollMs = 50;
constexpr int paintMs = 150;

void say(const QString& line)
{
    QTextStream(stdout) << line << Qt::endl;
}

[[noreturn]] void giveUp(const QString& reason)
{
    say(QStringLiteral("Tour failed: ") + reason);
    std::_Exit(1);
}

struct TourOptions {
    QString language;
    QString format;
    QString cue;
    QString cover;
    QString output;
    QString shots;
};

class Tour {
public:
    Tour(MainWindow& mainWindow, TourOptions tourOptions)
        : window(mainWindow), options(std::move(tourOptions))
    {
    }

    void walk();

private:
    QStackedWidget* pages() const;
    QPushButton* button(const char* name) const;
    QPushButton* buttonBeside(QWidget* edit) const;
    QWidget* page() const;
    QLineEdit* pathEdit(int place) const;

    void click(QAbstractButton* target) const;
    void next(const QString& pageName);
    void shoot(const QString& name);
    void chooseFile(QAbstractButton* opener, const QString& path, const QString& shotName);
    void atDialog(std::function<bool(QWidget*)> handle);

    void sourceStep();
    void outputStep();
    void metadataStep();
    void ripStep();
    void printLog() const;

    MainWindow& window;
    TourOptions options;
    int shotCount = 0;
};

QStackedWidget* Tour::pages() const
{
    auto* stack = window.findChild<QStackedWidget*>();
    if (!stack)
        giveUp(QStringLiteral("the window has no pages"));
    return stack;
}

QWidget* Tour::page() const
{
    return pages()->currentWidget();
}

QPushButton* Tour::button(const char* name) const
{
    auto* found = window.findChild<QPushButton*>(QString::fromLatin1(name));
    if (!found)
        giveUp(QStringLiteral("no button named ") + QString::fromLatin1(name));
    return found;
}

QLineEdit* Tour::pathEdit(int place) const
{
    const auto edits = page()->findChildren<QLineEdit*>(QStringLiteral("pathEdit"));
    if (edits.size() <= place)
        giveUp(QStringLiteral("a path field is missing"));
    return edits.at(place);
}

QPushButton* Tour::buttonBeside(QWidget* edit) const
{
    auto* found = edit->parentWidget()->findChild<QPushButton*>(QStringLiteral("browseBtn"));
    if (!found)
        giveUp(QStringLiteral("no button beside a path field"));
    return found;
}

void Tour::click(QAbstractButton* target) const
{
    if (!target->isEnabled() || !target->isVisible())
        giveUp(QStringLiteral("cannot click ") + target->text());
    QTest::mouseClick(target, Qt::LeftButton);
}

/// Presses Next once the wizard allows it.
void Tour::next(const QString& pageName)
{
    auto* nextBtn = button("nextBtn");
    if (!QTest::qWaitFor([&] { return nextBtn->isEnabled(); }, lookupLimitMs))
        giveUp(QStringLiteral("Next stays disabled before ") + pageName);
    const int before = pages()->currentIndex();
    click(nextBtn);
    if (pages()->currentIndex() != before + 1)
        giveUp(QStringLiteral("Next did not lead to ") + pageName);
    say(QStringLiteral("  at ") + pageName);
}

/// Keeps what the screen shows where the window stands, dialogs above it included.
void Tour::shoot(const QString& name)
{
    // Inside a slot no event loop turns, so the pending paint is done by hand.
    window.repaint();
    if (auto* dialog = QApplication::activeModalWidget())
        dialog->repaint();
    const QRect area = window.geometry();
    QPixmap picture = window.screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    if (picture.isNull())
        picture = window.grab();
    const QString file = QStringLiteral("%1/%2-%3-%4.png")
                             .arg(options.shots)
                             .arg(++shotCount, 2, 10, QLatin1Char('0'))
                             .arg(name, options.language);
    if (!picture.save(file))
        giveUp(QStringLiteral("cannot write ") + file);
    say(QStringLiteral("  screenshot ") + file);
}

/// Watches for the next modal dialog until handle returns true. The watch runs
/// from a timer, since a modal dialog blocks its caller in an event loop of its own.
void Tour::atDialog(std::function<bool(QWidget*)> handle)
{
    auto* watch = new QTimer(&window);
    QObject::connect(watch, &QTimer::timeout, &window, [watch, handle = std::move(handle)] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible())
            return;
        watch->stop();
        QTest::qWait(paintMs);
        if (!handle(dialog))
            giveUp(QStringLiteral("an unexpected dialog: ") + dialog->windowTitle());
        watch->deleteLater();
    });
    watch->start(pollMs);
}

void Tour::chooseFile(QAbstractButton* opener, const QString& path, const QString& shotName)
{
    bool chosen = false;
    atDialog([&](QWidget* dialog) {
        auto* picker = qobject_cast<QFileDialog*>(dialog);
        if (!picker)
            return false;
        picker->setDirectory(QFileInfo(path).absolutePath());
        picker->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(QFileInfo(path).fileName());
        QTest::qWait(paintMs);
        shoot(shotName);
        auto* box = picker->findChild<QDialogButtonBox*>();
        chosen = true;
        QTest::mouseClick(box->button(QDialogButtonBox::Open), Qt::LeftButton);
        return true;
    });
    click(opener);
    if (!QTest::qWaitFor([&] { return chosen; }, dialogLimitMs))
        giveUp(QStringLiteral("no file dialog for ") + path);
}

void Tour::sourceStep()
{
    shoot(QStringLiteral("source"));
    QLineEdit* cueEdit = pathEdit(0);
    chooseFile(buttonBeside(cueEdit), options.cue, QStringLiteral("cue-dialog"));
    if (QFileInfo(cueEdit->text()) != QFileInfo(options.cue))
        giveUp(QStringLiteral("the CUE path did not reach its field"));
    QTest::qWait(paintMs);
    shoot(QStringLiteral("source-chosen"));
}

void Tour::outputStep()
{
    QLineEdit* folder = pathEdit(0);
    folder->selectAll();
    QTest::keyClicks(folder, options.output);
    bool found = false;
    for (auto* radio : page()->findChildren<QAbstractButton*>(QStringLiteral("fmtRadio"))) {
        if (radio->text().startsWith(options.format, Qt::CaseInsensitive)) {
            // A click in the middle of a wide radio button lies outside of its text.
            QTest::mouseClick(radio, Qt::LeftButton, {}, QPoint(12, radio->height() / 2));
            found = radio->isChecked();
        }
    }
    if (!found)
        giveUp(QStringLiteral("no such format: ") + options.format);
    QTest::qWait(paintMs);
    shoot(QStringLiteral("output"));
}

void Tour::metadataStep()
{
    if (!QTest::qWaitFor([&] { return button("nextBtn")->isEnabled(); }, lookupLimitMs))
        giveUp(QStringLiteral("the lookup does not end"));
    auto* art = page()->findChild<QPushButton*>(QStringLiteral("browseBtn"));
    if (!art)
        giveUp(QStringLiteral("no button for the cover"));
    chooseFile(art, options.cover, QStringLiteral("cover-dialog"));
    QTest::qWait(paintMs);
    shoot(QStringLiteral("metadata"));
    auto* table = page()->findChild<QTableWidget*>(QStringLiteral("trackTable"));
    for (int row = 0; table && row < table->rowCount(); ++row)
        say(QStringLiteral("    %1  %2  %3")
                .arg(table->item(row, 0)->text(), table->item(row, 2)->text(), table->item(row, 1)->text()));
}

void Tour::ripStep()
{
    QTest::qWait(paintMs);
    shoot(QStringLiteral("rip-ready"));

    auto* progress = page()->findChild<QProgressBar*>();
    if (!progress)
        giveUp(QStringLiteral("no progress bar"));
    bool halfway = false;
    QObject::connect(progress, &QProgressBar::valueChanged, &window, [&](int value) {
        if (!halfway && value >= 60 && value < 100) {
            halfway = true;
            shoot(QStringLiteral("rip-running"));
        }
    });

    bool dismissed = false;
    atDialog([&](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        if (!box)
            return false;
        shoot(QStringLiteral("rip-complete"));
        say(QStringLiteral("  the result box says: ") + box->text().simplified());
        dismissed = true;
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        return true;
    });
    click(button("ripBtn"));
    auto* nextBtn = button("nextBtn");
    if (!QTest::qWaitFor([&] { return dismissed && nextBtn->isEnabled(); }, ripLimitMs))
        giveUp(QStringLiteral("the rip does not end"));
    QObject::disconnect(progress, &QProgressBar::valueChanged, &window, nullptr);
    QTest::qWait(paintMs);
    shoot(QStringLiteral("rip-done"));
}

void Tour::printLog() const
{
    const auto* log = window.findChild<QTextEdit*>();
    if (!log)
        giveUp(QStringLiteral("the window has no log"));
    say(QStringLiteral("  the log:"));
    for (const QString& line : log->toPlainText().split(QLatin1Char('\n')))
        say(QStringLiteral("    | ") + line);
}

void Tour::walk()
{
    if (!QTest::qWaitForWindowExposed(&window))
        giveUp(QStringLiteral("the window does not show"));
    QTest::qWait(paintMs);
    say(QStringLiteral("  at Source"));
    sourceStep();
    next(QStringLiteral("Output"));
    outputStep();
    next(QStringLiteral("Metadata"));
    metadataStep();
    next(QStringLiteral("RIP"));
    ripStep();
    next(QStringLiteral("Verify"));
    QTest::qWait(paintMs);
    shoot(QStringLiteral("verify"));
    printLog();
    say(QStringLiteral("  walked all five steps, %1 screenshots").arg(shotCount));
}

TourOptions readOptions(const QCoreApplication& application)
{
    QCommandLineParser parser;
    const QStringList names{QStringLiteral("language"), QStringLiteral("format"), QStringLiteral("cue"),
                            QStringLiteral("cover"),    QStringLiteral("output"), QStringLiteral("shots")};
    for (const QString& name : names)
        parser.addOption({name, name, name});
    parser.process(application);
    for (const QString& name : names) {
        if (parser.value(name).isEmpty())
            giveUp(QStringLiteral("the option --%1 is missing").arg(name));
    }
    return {parser.value(names[0]), parser.value(names[1]), parser.value(names[2]),
            parser.value(names[3]), parser.value(names[4]), parser.value(names[5])};
}

} // namespace

int main(int argc, char** argv)
{
    // The walk answers Qt's own file dialog; that of a desktop lies beyond its reach.
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QLatin1String(programinfo::name));
    QApplication::setApplicationVersion(QLatin1String(programinfo::version));
    initResources();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon.ico")));
    QApplication::setOrganizationName(QLatin1String(programinfo::organisation));

    const TourOptions options = readOptions(application);
    if (!QDir().mkpath(options.shots) || !QDir().mkpath(options.output))
        giveUp(QStringLiteral("cannot make the folders"));
    setLanguageMode(options.language == QLatin1String("ja") ? 1 : 2);
    loadLanguage();
    installFontSubstitutes();
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));

    // The demo disc is in no database, and a tour needs no network.
    const OfflineServices offline;
    MainWindow window;
    window.move(60, 40);
    window.show();
    Tour(window, options).walk();
    // The window's threads are done by now; a worker that lingers must not turn a
    // complete walk into a crash at exit.
    window.close();
    return 0;
}
