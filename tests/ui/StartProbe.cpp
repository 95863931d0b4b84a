// Linked with the program's own main in place of a person: waits for the window of
// a start, says what the start has made of the process, and closes the window.

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace {

void say(const char* what, const QString& value)
{
    std::printf("%s: %s\n", what, value.toUtf8().constData());
}

void report()
{
    QWidget* window = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->isWindow())
            window = widget;
    }
    if (!window) {
        QTimer::singleShot(1, report);
        return;
    }
    const auto page = [window](int step) { return window->findChild<QStackedWidget*>()->widget(step); };
    say("name", QApplication::applicationName());
    say("version", QApplication::applicationVersion());
    say("organisation", QApplication::organizationName());
    say("font",
        QStringLiteral("%1 %2").arg(QApplication::font().family()).arg(QApplication::font().pointSize()));
    say("icon", QApplication::windowIcon().isNull() ? QStringLiteral("none") : QStringLiteral("there"));
    say("window", window->windowTitle());
    say("convert", window->findChild<QPushButton*>(QStringLiteral("convertBtn"))->text());
    say("heading", page(0)->findChild<QLabel*>(QStringLiteral("stepHeading"))->text());
    say("output", page(1)->findChild<QLineEdit*>(QStringLiteral("pathEdit"))->text());
    window->close();
}

// On the application's construction, long before there is a window.
void waitForTheWindow()
{
    say("name at first", QApplication::applicationName());
    QTimer::singleShot(0, report);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(waitForTheWindow)
