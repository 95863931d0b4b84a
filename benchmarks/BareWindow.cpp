// The least that a program with a window of Qt can be.

#include <QApplication>
#include <QLabel>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QLabel label(QStringLiteral("Hello"));
    label.show();
    return QApplication::exec();
}
