// What a walk does at one step.

#include "endurance/Walk.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QSpinBox>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>

#include <array>

namespace {

constexpr char pathField[] = "pathEdit";

bool isForPaths(const QWidget* widget)
{
    return widget && widget->objectName() == QLatin1String(pathField);
}

QString nameOf(const QWidget* widget)
{
    const QString text = widget->property("text").toString().left(12);
    return QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName()
           + (text.isEmpty() ? text : QLatin1Char(' ') + text);
}

} // namespace

void Walk::act()
{
    QWidget* modal = QApplication::activeModalWidget();
    if (QWidget* popup = QApplication::activePopupWidget())
        actInPopup(popup);
    else if (auto* picker = qobject_cast<QFileDialog*>(modal))
        actInPicker(picker);
    else if (auto* box = qobject_cast<QMessageBox*>(modal))
        actInBox(box);
    else if (auto* dialog = qobject_cast<QDialog*>(modal); dialog && dialog->inherits("ConvertDialog"))
        actInConversion(dialog);
    else if (dialog)
        actInSettings(dialog);
    else
        actInWindow();
}

void Walk::actInPopup(QWidget* popup)
{
    auto* view = popup->findChild<QAbstractItemView*>();
    press(view ? view : popup, oneOf(std::array{Qt::Key_Return, Qt::Key_Down, Qt::Key_Up, Qt::Key_Escape}));
}

// Nothing at random: a file dialog can delete and rename.
void Walk::actInPicker(QFileDialog* picker)
{
    if (chance(25)) {
        done << QStringLiteral("cancel picker");
        picker->reject();
        return;
    }
    const QStringList found = picker->fileMode() == QFileDialog::Directory
                                  ? stage.folders()
                                  : stage.sheets() + stage.songs() + stage.pictures();
    const QString path = oneOf(found);
    done << QStringLiteral("pick ") + path.section(u'/', -1);
    picker->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
    QMetaObject::invokeMethod(picker, "accept");
}

void Walk::actInBox(QDialog* box)
{
    if (chance(40))
        return; // it is read
    if (chance(50))
        press(box, chance(70) ? Qt::Key_Return : Qt::Key_Escape);
    else
        clickAnything(box);
}

void Walk::actInSettings(QDialog* dialog)
{
    const auto fields = dialog->findChildren<QLineEdit*>(QLatin1String(pathField));
    const auto one = below(100);
    if (one < 35)
        click(dialog->findChild<QPushButton*>(chance(50) ? "nextBtn" : "backBtn"), "settings end");
    else if (one < 45 && fields.size() == 2)
        type(fields[1], oneOf(QStringList{"{track}. {title}", "{artist} {title}", "{album}/{track}", ""}));
    else if (one < 50 && fields.size() == 2)
        type(fields[0], oneOf(stage.outputs()));
    else if (one < 75)
        clickAnything(dialog);
    else
        pressKey(dialog);
}

void Walk::actInConversion(QDialog* dialog)
{
    const auto fields = dialog->findChildren<QLineEdit*>(QLatin1String(pathField));
    const auto one = below(100);
    if (one < 20)
        type(fields.value(0), oneOf(stage.folders()));
    else if (one < 30)
        type(fields.value(1), oneOf(stage.outputs()));
    else if (one < 55)
        click(dialog->findChild<QPushButton*>(QStringLiteral("ripBtn")), "convert");
    else if (one < 75)
        press(dialog, Qt::Key_Escape);
    else if (one < 90)
        clickAnything(dialog);
    else
        pressKey(dialog);
}

void Walk::actInWindow()
{
    if (patience-- <= 0)
        chooseHeading();
    const auto one = below(100);
    if (one < 6)
        disturb();
    else if (one < 14)
        pressKey(&app->window());
    else if (one < 18)
        clickAnything(&app->window());
    else if (app->step() == heading && chance(75))
        actOnPage();
    else if (app->step() == heading)
        chooseHeading();
    else
        goTowardsHeading();
}

void Walk::chooseHeading()
{
    const auto one = below(100);
    heading = one < 38 ? 0 : one < 42 ? 1 : one < 52 ? 2 : one < 92 ? 3 : 4;
    patience = 8;
}

void Walk::goTowardsHeading()
{
    if (app->step() < heading)
        click(app->next(), "next");
    else
        click(app->back(), "back");
}

void Walk::actOnPage()
{
    switch (app->step()) {
    case 0:
        actOnSource();
        break;
    case 1:
        actOnOutput();
        break;
    case 2:
        actOnMetadata();
        break;
    case 3:
        actOnRip();
        break;
    default:
        chance(20) ? click(app->next(), "finish") : pressKey(&app->window());
    }
}

void Walk::actOnSource()
{
    auto* drives = app->onPage<QComboBox>(0, "driveCombo");
    const auto one = below(100);
    if (one < 25)
        click(app->reset(), "reset");
    else if (one < 40)
        type(app->audioPath(), oneOf(stage.songs()));
    else if (one < 60)
        type(app->audioPath(), QString());
    else if (one < 65)
        type(app->cuePath(), QString());
    else if (one < 75)
        click(app->onPage<QPushButton>(0, "browseBtn", 1), "browse sheet");
    else if (one < 80)
        click(app->onPage<QPushButton>(0, "browseBtn", 2), "browse song");
    else if (one < 85)
        click(app->onPage<QPushButton>(0, "browseBtn", 0), "refresh drives");
    else if (one < 95)
        press(drives, chance(70) ? Qt::Key_Down : Qt::Key_Up);
    else
        click(drives, "drives");
}

void Walk::actOnOutput()
{
    const auto one = below(100);
    if (one < 60)
        click(app->onPage<QAbstractButton>(1, "fmtRadio", below(3)), "format");
    else if (one < 90)
        type(app->outputPath(), oneOf(stage.outputs()));
    else
        click(app->onPage<QPushButton>(1, "browseBtn"), "browse output");
}

void Walk::actOnMetadata()
{
    const auto one = below(100);
    QTableWidget* tracks = app->tracks();
    if (one < 30)
        type(chance(50) ? app->album() : app->artist(),
             oneOf(QStringList{"", "A", "A - B", "Long (live) (remastered)", "<b>/</b>", "水"}));
    else if (one < 60 && tracks->rowCount() > 0) {
        tracks->setCurrentCell(below(tracks->rowCount()), 1);
        press(tracks, Qt::Key_F2);
        QTest::keyClicks(QApplication::focusWidget() ? QApplication::focusWidget() : tracks,
                         QStringLiteral("x"));
    } else if (one < 75)
        click(app->onPage<QPushButton>(2, "browseBtn"), "browse cover");
    else if (one < 85)
        press(app->onPage<QSpinBox>(2, "formEdit", below(2)), chance(70) ? Qt::Key_Up : Qt::Key_Down);
    else
        pressKey(&app->window());
}

void Walk::actOnRip()
{
    if (!app->rip()->isEnabled() && chance(60))
        chooseHeading();
    else if (chance(70))
        click(app->rip(), "RIP");
    else
        pressKey(&app->window());
}

void Walk::disturb()
{
    const auto one = below(100);
    if (one < 30) {
        done << QStringLiteral("resize");
        app->window().resize(960 + below(400), 620 + below(300));
    } else if (one < 55) {
        done << QStringLiteral("plug");
        app->shelf().letters = chance(70) ? QStringList{QStringLiteral("/dev/sr0")} : QStringList();
    } else if (one < 75) {
        click(app->find<QPushButton>("settingsBtn"), "settings");
    } else if (one < 95) {
        click(app->find<QPushButton>("convertBtn"), "conversion");
    } else {
        done << QStringLiteral("close");
        app->window().close();
    }
}

void Walk::click(QWidget* widget, const QString& what)
{
    done << what;
    if (widget && widget->isVisible())
        QTest::mouseClick(widget, Qt::LeftButton);
}

void Walk::clickAnything(QWidget* top)
{
    QList<QWidget*> found;
    for (QWidget* widget : top->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->window() != top)
            continue;
        if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget)
            || qobject_cast<QLineEdit*>(widget) || qobject_cast<QTabBar*>(widget)
            || qobject_cast<QAbstractItemView*>(widget) || qobject_cast<QTextEdit*>(widget))
            found << widget;
    }
    if (found.isEmpty())
        return;
    QWidget* target = oneOf(found);
    const QString name = nameOf(target);
    if (auto* area = qobject_cast<QAbstractScrollArea*>(target))
        target = area->viewport();
    click(target, name);
}

void Walk::pressKey(QWidget* top)
{
    QWidget* target = QApplication::focusWidget();
    if (!target || target->window() != top)
        target = top->focusWidget() ? top->focusWidget() : top;
    static constexpr std::array anyKeys{
        Qt::Key_Tab,  Qt::Key_Tab,  Qt::Key_Tab,    Qt::Key_Backtab,  Qt::Key_Space, Qt::Key_Space,
        Qt::Key_Down, Qt::Key_Up,   Qt::Key_Return, Qt::Key_PageDown, Qt::Key_Left,  Qt::Key_Right,
        Qt::Key_F2,   Qt::Key_Home, Qt::Key_Delete, Qt::Key_7,        Qt::Key_X,     Qt::Key_Escape,
    };
    const Qt::Key key = oneOf(anyKeys);
    // Paths come from the stage alone, and no link is followed.
    const bool away = isForPaths(target) || (qobject_cast<QLabel*>(target) && key != Qt::Key_Escape);
    press(target, away ? Qt::Key_Tab : key);
}

void Walk::press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    if (!widget || !widget->isVisible())
        return;
    done << QStringLiteral("key %1 in %2").arg(QString::number(key, 16), nameOf(widget));
    QTest::keyClick(widget, key, modifiers);
}

void Walk::type(QLineEdit* field, const QString& text)
{
    if (!field || !field->isVisible())
        return;
    done << QStringLiteral("type '%1'").arg(text.section(u'/', -1));
    field->setText(text);
}
