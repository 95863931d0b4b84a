#include "support/DialogWatcher.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

constexpr int pollMilliseconds = 5;

} // namespace

DialogWatcher::DialogWatcher(std::function<void(QDialog*)> onDialog) : timer(std::make_unique<QTimer>())
{
    QWidget* open = QApplication::activeModalWidget();
    QObject::connect(timer.get(), &QTimer::timeout, [this, open, onDialog] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog == open)
            return;
        timer->stop();
        onDialog(dialog);
    });
    timer->start(pollMilliseconds);
}

DialogWatcher::~DialogWatcher() = default;

QStringList pickPath(QPushButton* opener, const QString& path)
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QStringList shown;
    const DialogWatcher watcher([&](QDialog* dialog) {
        if (auto* picker = qobject_cast<QFileDialog*>(dialog))
            shown = QStringList{picker->windowTitle(), picker->directory().absolutePath()};
        if (path.isEmpty()) {
            dialog->reject();
            return;
        }
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    QTest::mouseClick(opener, Qt::LeftButton);
    return shown;
}
