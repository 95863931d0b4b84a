#include "tour/TourGuide.h"

#include "ui/MainWindow.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QTest>
#include <QTextStream>
#include <QTimer>

#include <cstdlib>

namespace tour {

void say(const QString& line)
{
    QTextStream(stdout) << line << Qt::endl;
}

void giveUp(const QString& reason)
{
    say(QStringLiteral("Tour failed: ") + reason);
    std::_Exit(1);
}

} // namespace tour

using tour::giveUp;
using tour::paintMs;
using tour::say;

namespace {

constexpr int pollMs = 50;

} // namespace

TourGuide::TourGuide(MainWindow& mainWindow, const QString& languageName, const QString& folder)
    : frame(mainWindow), language(languageName), shots(folder)
{
}

QStackedWidget* TourGuide::pages() const
{
    auto* stack = frame.findChild<QStackedWidget*>();
    if (!stack)
        giveUp(QStringLiteral("the window has no pages"));
    return stack;
}

QWidget* TourGuide::page() const
{
    return pages()->currentWidget();
}

QPushButton* TourGuide::button(const char* name) const
{
    auto* found = frame.findChild<QPushButton*>(QString::fromLatin1(name));
    if (!found)
        giveUp(QStringLiteral("no button named ") + QString::fromLatin1(name));
    return found;
}

QLineEdit* TourGuide::pathEdit(int place) const
{
    const auto edits = page()->findChildren<QLineEdit*>(QStringLiteral("pathEdit"));
    if (edits.size() <= place)
        giveUp(QStringLiteral("a path field is missing"));
    return edits.at(place);
}

QPushButton* TourGuide::buttonBeside(QWidget* edit) const
{
    auto* found = edit->parentWidget()->findChild<QPushButton*>(QStringLiteral("browseBtn"));
    if (!found)
        giveUp(QStringLiteral("no button beside a path field"));
    return found;
}

void TourGuide::click(QAbstractButton* target) const
{
    if (!target->isEnabled() || !target->isVisible())
        giveUp(QStringLiteral("cannot click ") + target->text());
    QTest::mouseClick(target, Qt::LeftButton);
}

void TourGuide::next(const QString& pageName)
{
    auto* nextBtn = button("nextBtn");
    if (!QTest::qWaitFor([&] { return nextBtn->isEnabled(); }, tour::lookupLimitMs))
        giveUp(QStringLiteral("Next stays disabled before ") + pageName);
    const int before = pages()->currentIndex();
    click(nextBtn);
    if (pages()->currentIndex() != before + 1)
        giveUp(QStringLiteral("Next did not lead to ") + pageName);
    say(QStringLiteral("  at ") + pageName);
}

void TourGuide::shoot(const QString& name)
{
    // Inside a slot no event loop turns, so the pending paint is done by hand.
    frame.repaint();
    QRect area = frame.geometry();
    if (auto* dialog = QApplication::activeModalWidget()) {
        dialog->repaint();
        area = area.united(dialog->geometry());
    }
    QPixmap picture = frame.screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    if (picture.isNull())
        picture = frame.grab();
    const QString file = QStringLiteral("%1/%2-%3-%4.png")
                             .arg(shots)
                             .arg(++shotsTaken, 2, 10, QLatin1Char('0'))
                             .arg(name, language);
    if (!picture.save(file))
        giveUp(QStringLiteral("cannot write ") + file);
    say(QStringLiteral("  screenshot ") + file);
}

void TourGuide::atDialog(std::function<bool(QWidget*)> handle)
{
    auto* watch = new QTimer(&frame);
    QObject::connect(watch, &QTimer::timeout, &frame, [watch, handle = std::move(handle)] {
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

void TourGuide::chooseFile(QAbstractButton* opener, const QString& path, const QString& shotName)
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
    if (!QTest::qWaitFor([&] { return chosen; }, tour::dialogLimitMs))
        giveUp(QStringLiteral("no file dialog for ") + path);
}
