// Linked with a program's own main in place of a person: waits until the window of its
// start is drawn and the event loop has nothing left to do, and ends the program.

#include <QApplication>
#include <QTimer>
#include <QWidget>

namespace {

class FirstSight : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* widget = qobject_cast<QWidget*>(object);
        if (!seen && event->type() == QEvent::Paint && widget && widget->window()->isVisible()) {
            seen = true;
            QTimer::singleShot(0, widget->window(), &QWidget::close);
        }
        return false;
    }

private:
    bool seen = false;
};

void watch()
{
    qApp->installEventFilter(new FirstSight(qApp));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)
