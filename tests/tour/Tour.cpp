// Walks the real window through its dialogs and a whole rip, as a person would, and
// keeps a screenshot of each step. Exits with 0 when the wizard came to its last
// page.

#include "base/Language.h"
#include "support/OfflineServices.h"
#include "tour/DialogWalk.h"
#include "tour/TourGuide.h"
#include "tour/WizardWalk.h"
#include "ui/Background.h"
#include "ui/Fonts.h"
#include "ui/LookupChains.h"
#include "ui/MainWindow.h"
#include "ui/ProgramInfo.h"
#include "ui/Resources.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QTest>

namespace {

struct TourOptions {
    QString language;
    QString format;
    QString cue;
    QString cover;
    QString sources; ///< the folder that is converted
    QString output;
    QString shots;
};

TourOptions readOptions(const QCoreApplication& application)
{
    QCommandLineParser parser;
    const QStringList names{QStringLiteral("language"), QStringLiteral("format"),  QStringLiteral("cue"),
                            QStringLiteral("cover"),    QStringLiteral("sources"), QStringLiteral("output"),
                            QStringLiteral("shots")};
    for (const QString& name : names)
        parser.addOption({name, name, name});
    parser.process(application);
    for (const QString& name : names) {
        if (parser.value(name).isEmpty())
            tour::giveUp(QStringLiteral("the option --%1 is missing").arg(name));
    }
    return {parser.value(names[0]), parser.value(names[1]), parser.value(names[2]), parser.value(names[3]),
            parser.value(names[4]), parser.value(names[5]), parser.value(names[6])};
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
        tour::giveUp(QStringLiteral("cannot make the folders"));
    setLanguageMode(options.language == QLatin1String("ja") ? 1 : 2);
    loadLanguage();
    installFontSubstitutes();
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));

    // The demo disc is in no database, and a tour needs no network.
    const OfflineServices offline;
    MainWindow window;
    window.move(60, 40);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        tour::giveUp(QStringLiteral("the window does not show"));
    QTest::qWait(tour::paintMs);
    TourGuide guide(window, options.language, options.shots);
    DialogWalk(guide, options.sources, options.output + QStringLiteral("-converted")).walk();
    WizardWalk(guide, {options.format, options.cue, options.cover, options.output}).walk();
    window.close();
    stopLookups();
    waitForBackground();
    return 0;
}
