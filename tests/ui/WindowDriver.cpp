#include "ui/WindowDriver.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "ui/Fonts.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFont>
#include <QMessageBox>
#include <QSettings>
#include <QStackedWidget>
#include <QTest>
#include <QTextEdit>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int metadataStep = 2;

} // namespace

void FailingEnd::endProcess()
{
    std::fputs("A rip did not stop when its window went.\n", stderr);
    std::_Exit(EXIT_FAILURE);
}

WindowDriver::WindowDriver(int languageMode, const QStringList& letters)
{
    drives.letters = letters;
    // The last window of a test must not stop the event loops of the next one.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QSettings().setValue(QLatin1String(settings::language), languageMode);
    loadLanguage();
    installFontSubstitutes();
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));
    frame = std::make_unique<MainWindow>();
    frame->show();
}

WindowDriver::~WindowDriver() = default;

qint64 WindowDriver::destroyWindow()
{
    QElapsedTimer time;
    time.start();
    frame.reset();
    return time.elapsed();
}

QWidget* WindowDriver::pageAt(int step)
{
    return frame->findChild<QStackedWidget*>()->widget(step);
}

int WindowDriver::step()
{
    return frame->findChild<QStackedWidget*>()->currentIndex();
}

void WindowDriver::click(QPushButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton);
}

void WindowDriver::advanceTo(int wanted)
{
    const auto ready = [this] {
        constexpr int lookupPatienceMilliseconds = 60000;
        const auto enabled = [this] { return next()->isEnabled(); };
        return step() == metadataStep ? QTest::qWaitFor(enabled, lookupPatienceMilliseconds) : enabled();
    };
    while (ready() && step() < wanted)
        click(next());
}

void WindowDriver::pickFile(QPushButton* opener, const QString& path)
{
    pickPath(opener, path);
}

QStringList WindowDriver::runRip(int patienceMilliseconds)
{
    QStringList box;
    const DialogWatcher watcher([&box](QDialog* dialog) {
        if (auto* message = qobject_cast<QMessageBox*>(dialog))
            box = QStringList{message->windowTitle(), message->text()};
        dialog->accept();
    });
    click(rip());
    static_cast<void>(QTest::qWaitFor([&box] { return !box.isEmpty(); }, patienceMilliseconds));
    return box;
}

QStringList WindowDriver::logLines()
{
    const QString text = pageAt(3)->findChild<QTextEdit*>()->toPlainText();
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

QString WindowDriver::card(int place)
{
    return onPage<QLabel>(3, "statValue", place)->text();
}

QString WindowDriver::cell(QTableWidget* table, int row, int column)
{
    const QTableWidgetItem* item = table->item(row, column);
    return item ? item->text() : QString();
}
