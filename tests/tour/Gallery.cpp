// Pictures of every page and dialog in every state that a user meets, in both
// languages and at the smallest and the usual size of the window. The drive is
// simulated and the services are on this machine, so that the pictures are the
// same on every run.
//
//   tarvel-gallery FOLDER

#include "tour/ContactSheet.h"
#include "tour/Scenes.h"

#include "ui/Resources.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

constexpr QSize smallestSize{960, 620};
constexpr QSize usualSize{1100, 680};

void isolate(const QString& home)
{
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        qputenv(name, home.toUtf8());
    QDir(home).mkpath(QStringLiteral("Music"));
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir home;
    isolate(home.path());
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("TarvelGallery"));
    QApplication::setApplicationName(QStringLiteral("TarvelGallery"));
    initResources();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon.ico")));

    QTextStream out(stdout);
    const QString folder = QApplication::arguments().value(1);
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        out << "Name a folder for the pictures." << Qt::endl;
        return 2;
    }
    int saved = 0;
    for (const int language : {2, 1}) {
        for (const QSize size : {usualSize, smallestSize}) {
            const QString name = QStringLiteral("%1-%2x%3")
                                     .arg(language == 1 ? QStringLiteral("ja") : QStringLiteral("en"))
                                     .arg(size.width())
                                     .arg(size.height());
            const QList<Shot> shots = playScenes(language, size);
            int number = 0;
            for (const Shot& shot : shots) {
                const QString file =
                    QStringLiteral("%1/%2-%3-%4.png")
                        .arg(folder, name)
                        .arg(++number, 2, 10, QLatin1Char('0'))
                        .arg(QString(shot.caption).replace(QLatin1Char(' '), QLatin1Char('-')));
                if (!shot.picture.save(file)) {
                    out << "Cannot write " << file << Qt::endl;
                    return 1;
                }
                ++saved;
            }
            if (!saveContactSheet(QStringLiteral("%1/sheet-%2.png").arg(folder, name), shots))
                return 1;
            out << name << ": " << number << " pictures" << Qt::endl;
        }
    }
    out << saved << " pictures and 4 contact sheets in " << folder << Qt::endl;
    return 0;
}
