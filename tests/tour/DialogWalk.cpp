#include "tour/DialogWalk.h"

#include "ui/MainWindow.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace tour;

namespace {

constexpr int convertLimitMs = 300'000;

} // namespace

void DialogWalk::settings()
{
    bool closed = false;
    guide.atDialog([&](QWidget* dialog) {
        auto* tabs = dialog->findChild<QTabWidget*>(QStringLiteral("settingsTabs"));
        if (!tabs)
            return false;
        guide.shoot(QStringLiteral("settings"));
        tabs->setCurrentIndex(1);
        QTest::qWait(paintMs);
        guide.shoot(QStringLiteral("about"));
        closed = true;
        guide.click(dialog->findChild<QPushButton*>(QStringLiteral("backBtn")));
        return true;
    });
    guide.click(guide.button("settingsBtn"));
    if (!QTest::qWaitFor([&] { return closed; }, dialogLimitMs))
        giveUp(QStringLiteral("no Settings dialog"));
}

void DialogWalk::convert(int formatPlace)
{
    guide.click(guide.button("convertBtn"));
    QDialog* dialog = nullptr;
    for (QDialog* child : guide.window().findChildren<QDialog*>()) {
        if (child->isVisible())
            dialog = child;
    }
    if (!dialog)
        giveUp(QStringLiteral("no Convert Files dialog"));
    QTest::qWait(paintMs);
    const auto edits = dialog->findChildren<QLineEdit*>();
    const auto buttons = dialog->findChildren<QPushButton*>();
    auto* format = dialog->findChild<QComboBox*>();
    if (edits.size() < 2 || buttons.size() < 3 || !format)
        giveUp(QStringLiteral("the Convert Files dialog lacks a field"));
    edits[0]->setText(sources);
    edits[1]->setText(output);
    format->setCurrentIndex(formatPlace);
    QTest::qWait(paintMs);
    const QString name = QStringLiteral("convert-") + format->currentData().toString().toLower();
    guide.shoot(name + QStringLiteral("-ready"));
    QPushButton* start = buttons.constLast();
    const QString startText = start->text();
    guide.click(start);
    if (!QTest::qWaitFor([&] { return start->isEnabled() && start->text() != startText; }, convertLimitMs))
        giveUp(QStringLiteral("the conversion does not end"));
    QTest::qWait(paintMs);
    guide.shoot(name + QStringLiteral("-done"));
    for (const QLabel* label : dialog->findChildren<QLabel*>()) {
        if (label->isVisible() && label->wordWrap())
            say(QStringLiteral("  the dialog says: ") + label->text());
    }
    dialog->close();
}

void DialogWalk::walk()
{
    settings();
    for (const int format : {0, 1, 2})
        convert(format);
}
