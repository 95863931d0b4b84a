// Linked with the program's own main in place of a person: brings the program into
// the middle of some work, says so, and closes the window where that is the way.
//
//     probe SEED STAGE OUTPUT

#include "endurance/EndingScene.h"

#include "support/DialogWatcher.h"
#include "support/DiscMaker.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"
#include "ui/DriveShelf.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QTextEdit>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace {

void say(const QString& line)
{
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

class EndingProbe {
public:
    EndingProbe() : scene(QCoreApplication::arguments().value(1).toUInt())
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        setUpDrive();
        setUpServices();
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, [this] { sayWhatWasSaved(); });
        QTimer::singleShot(0, qApp, [this] { begin(); });
    }

private:
    void setUpDrive()
    {
        if (scene.work == EndingScene::discRip || scene.work == EndingScene::lookup)
            shelf.letters = QStringList{shelf.letter};
        shelf.audio = makeAudio(endingstage::trackSectors, 1);
        shelf.leadOutLba = endingstage::trackCount * endingstage::trackSectors;
        shelf.tracks.clear();
        for (int track = 0; track < endingstage::trackCount; ++track)
            shelf.tracks.append(SimulatedTrack{static_cast<quint32>(track * endingstage::trackSectors)});
        // Virtual time alone would be over before anything could end it.
        shelf.onClock = [own = QThread::currentThread()] {
            if (QThread::currentThread() != own)
                QThread::msleep(2);
        };
    }

    void setUpServices()
    {
        if (scene.work == EndingScene::verification)
            services.on(hosts::accurateRip, "/", scene.seed / 10 % 2 == 0 ? silence() : drip());
        if (scene.work != EndingScene::lookup)
            return;
        ServedRelease release;
        release.media = {{1, QStringList(endingstage::trackCount, QStringLiteral("Song"))}};
        const auto answer = json(musicbrainz::discAnswer({musicbrainz::release(release)}));
        switch (scene.seed / 10 % 4) {
        case 0:
            services.on(hosts::musicBrainz, "/", silence());
            break;
        case 1:
            services.on(hosts::gnuDb, "/", silence());
            break;
        case 2:
            services.on(hosts::musicBrainz, "/", drip());
            break;
        default:
            services.on(hosts::musicBrainz, "/", answer);
            services.on(hosts::coverArtArchive, "/", drip());
        }
    }

    static ServedAnswer drip()
    {
        ServedAnswer answer = page(QByteArray(100'000, ' '));
        answer.pieceBytes = 1;
        answer.pieceMilliseconds = 50;
        return answer;
    }

    static MainWindow* window()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<MainWindow*>(widget))
                return found;
        }
        return nullptr;
    }
    template<typename Widget>
    Widget* find(const char* objectName, int place = 0) const
    {
        return window()->findChildren<Widget*>(QLatin1String(objectName)).value(place);
    }
    template<typename Widget>
    Widget* onPage(int page, const char* objectName, int place = 0) const
    {
        return window()
            ->findChild<QStackedWidget*>()
            ->widget(page)
            ->findChildren<Widget*>(QLatin1String(objectName))
            .value(place);
    }
    int step() const { return window()->findChild<QStackedWidget*>()->currentIndex(); }
    static QString staged(const QString& name)
    {
        return QCoreApplication::arguments().value(2) + QLatin1Char('/') + name;
    }
    static QString output() { return QCoreApplication::arguments().value(3); }

    void begin()
    {
        if (!window()) {
            QTimer::singleShot(1, qApp, [this] { begin(); });
            return;
        }
        onPage<QLineEdit>(1, "pathEdit")->setText(output());
        if (scene.work == EndingScene::imageRip || scene.work == EndingScene::verification)
            pickPath(onPage<QPushButton>(0, "browseBtn", 1),
                     staged(scene.work == EndingScene::imageRip ? endingstage::longSheet
                                                                : endingstage::shortSheet));
        if (scene.work == EndingScene::conversion)
            startConversion();
        else
            advance();
    }

    void advance()
    {
        if (scene.work == EndingScene::lookup && step() == 2) {
            moment();
            return;
        }
        if (step() < 3) {
            find<QPushButton>("nextBtn")->click(); // does nothing while a lookup has it off
            QTimer::singleShot(5, qApp, [this] { advance(); });
            return;
        }
        // What is looked up for the rip itself would come into its time.
        QTimer::singleShot(0, qApp, [this] { find<QPushButton>("ripBtn")->click(); });
        if (scene.work == EndingScene::verification)
            waitUntil([this] { return isRipped(); });
        else
            waitUntil([this] { return onPage<QProgressBar>(3, "ripProgress")->value() >= scene.percent; });
    }

    bool isRipped() const
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box)
            QTimer::singleShot(0, box, &QDialog::accept);
        if (!box && find<QPushButton>("nextBtn")->isEnabled())
            find<QPushButton>("nextBtn")->click();
        return step() == 4;
    }

    void startConversion()
    {
        find<QPushButton>("convertBtn")->click();
        auto* dialog = QApplication::activeModalWidget();
        const auto edits = dialog->findChildren<QLineEdit*>(QStringLiteral("pathEdit"));
        edits.value(0)->setText(staged(endingstage::sourceFolder));
        edits.value(1)->setText(output());
        const int wanted = 1 + scene.percent * endingstage::fileCount / 100;
        waitUntil([dialog, wanted] {
            static const QRegularExpression progress(QStringLiteral("\\((\\d+)/\\d+\\)"));
            for (const QLabel* label : dialog->findChildren<QLabel*>()) {
                if (progress.match(label->text()).captured(1).toInt() >= wanted)
                    return true;
            }
            return false;
        });
        QTimer::singleShot(0, dialog,
                           [dialog] { dialog->findChild<QPushButton*>(QStringLiteral("ripBtn"))->click(); });
    }

    void waitUntil(const std::function<bool()>& reached)
    {
        QTimer::singleShot(1, qApp, [this, reached] {
            if (reached())
                moment();
            else
                waitUntil(reached);
        });
    }

    void moment()
    {
        say(QStringLiteral("now"));
        if (scene.way == EndingScene::windowCloses)
            QTimer::singleShot(scene.milliseconds, qApp, [this] {
                say(QStringLiteral("closing"));
                window()->close();
            });
    }

    // As the user has read it in the log.
    void sayWhatWasSaved() const
    {
        static const QRegularExpression saved(QStringLiteral("Track (\\d+): ✦ saved"));
        if (!window())
            return;
        auto found = saved.globalMatch(window()->findChild<QTextEdit*>()->toPlainText());
        while (found.hasNext())
            say(QStringLiteral("saved ") + found.next().captured(1));
    }

    const EndingScene scene;
    DriveShelf shelf;
    DrivePlatformOverride inPlace{shelf};
    LoopbackServices services;
};

// On the application's construction, long before there is a window; kept until all
// that main makes is gone.
void playTheUser()
{
    static const EndingProbe probe;
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(playTheUser)
