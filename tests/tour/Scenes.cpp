#include "tour/Scenes.h"

#include "support/DialogWatcher.h"
#include "support/DiscMaker.h"
#include "support/LoadingDrive.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"
#include "ui/Background.h"
#include "ui/WindowDriver.h"
#include "verify/AccurateRip.h"
#include "verify/AccurateRipDatabase.h"

#include <QBuffer>
#include <QPainter>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

constexpr int discSectors = 3000;
constexpr int patience = 60000;

/// A cover that is easy to tell from an empty frame.
QByteArray drawnCover()
{
    QImage cover(500, 500, QImage::Format_RGB32);
    QPainter painter(&cover);
    QLinearGradient sky(0, 0, 0, 500);
    sky.setColorAt(0, QColor(0x1b, 0x2a, 0x49));
    sky.setColorAt(0.6, QColor(0xd9, 0x7b, 0x4f));
    sky.setColorAt(1, QColor(0x12, 0x18, 0x24));
    painter.fillRect(cover.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xff, 0xe0, 0xa3));
    painter.drawEllipse(QPoint(250, 250), 90, 90);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    cover.save(&buffer, "PNG");
    return bytes;
}

class Stage {
public:
    Stage(int languageMode, const QSize& windowSize) : language(languageMode), size(windowSize)
    {
        QSettings().clear();
    }
    ~Stage()
    {
        app.reset();
        services.transport().stop();
        waitForBackground();
    }

    /// A new window beside a new drive.
    WindowDriver& open(const QStringList& letters = {QStringLiteral("/dev/sr0")})
    {
        app.reset();
        app = std::make_unique<WindowDriver>(language, letters);
        app->window().resize(size);
        app->outputPath()->setText(folder.path() + QStringLiteral("/Music"));
        return *app;
    }

    void shoot(QList<Shot>& shots, const QString& caption, QWidget* widget = nullptr)
    {
        QTest::qWait(60);
        shots.append({caption, (widget ? widget : &app->window())->grab()});
    }

    /// Shoots the dialog that a click opens, and closes it.
    void shootDialog(QList<Shot>& shots, const QString& caption, QPushButton* opener)
    {
        bool seen = false;
        const DialogWatcher watcher([&](QDialog* dialog) {
            shoot(shots, caption, dialog);
            seen = true;
            dialog->accept();
        });
        WindowDriver::click(opener);
        static_cast<void>(QTest::qWaitFor([&] { return seen; }, patience));
    }

    void loadDisc()
    {
        app->shelf().audio = makeAudio(discSectors, 1);
        app->shelf().tracks = {{0}, {700}, {1500}, {2300}};
    }

    void answerMusicBrainz()
    {
        ServedRelease release;
        release.title = QStringLiteral("夜の森 / Forest at Night");
        release.artists = {QStringLiteral("Marsh Choir")};
        release.media = {{1,
                          {QStringLiteral("序曲"), QStringLiteral("Rain on the Reed Beds"),
                           QStringLiteral("渡り鳥 (Birds of Passage)"), QStringLiteral("Still Water")}}};
        services.on(hosts::musicBrainz, "/ws/2/discid/",
                    json(musicbrainz::discAnswer({musicbrainz::release(release)})));
        services.on(hosts::coverArtArchive, "/release/", image(drawnCover()));
    }

    void enterMetadata() { app->advanceTo(2); }

    void rip()
    {
        app->advanceTo(1);
        app->onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app->advanceTo(3);
        app->runRip();
    }

    AccurateRipIds discIds() const
    {
        DiscToc disc;
        for (const SimulatedTrack& track : app->shelf().tracks) {
            TrackInfo info;
            info.startLba = track.startLba;
            disc.tracks.append(info);
        }
        disc.totalSectors = discSectors;
        return computeAccurateRipIds(disc);
    }

    void answerAccurateRip(const QList<accuraterip::Entry>& entries)
    {
        const AccurateRipIds ids = discIds();
        services.on(hosts::accurateRip, "/",
                    page(accuraterip::pressing(ids.discId1, ids.discId2, ids.cddbId, entries)));
    }

    void verify()
    {
        WindowDriver::click(app->next());
        auto* bar = app->onPage<QProgressBar>(4, "ripProgress");
        static_cast<void>(QTest::qWaitFor([bar] { return bar->value() == 100; }, patience));
    }

    QString longPath() const
    {
        return folder.path()
               + QStringLiteral(
                   "/A folder whose name goes on and on/and another one below it/そしてもうひとつの長い名前/")
               + QString(120, QLatin1Char('x'));
    }

    QTemporaryDir folder;
    LoopbackServices services;
    std::unique_ptr<WindowDriver> app;

private:
    int language;
    QSize size;
};

void sourceAndOutput(Stage& stage, QList<Shot>& shots)
{
    stage.open({});
    stage.shoot(shots, QStringLiteral("Source without a drive"));
    stage.open({QStringLiteral("/dev/sr0"), QStringLiteral("/dev/sr1")});
    stage.app->cuePath()->setText(stage.longPath() + QStringLiteral("/disc.cue"));
    stage.shoot(shots, QStringLiteral("Source with drives and a long path"));
    WindowDriver::click(stage.app->next());
    stage.shoot(shots, QStringLiteral("Output"));
    stage.app->outputPath()->setText(stage.longPath());
    stage.shoot(shots, QStringLiteral("Output with a long path"));
}

void withoutDisc(Stage& stage, QList<Shot>& shots)
{
    const std::pair<DriveFailure, const char*> states[] = {
        {DriveFailure::becomingReady, "Metadata of a drive that gets ready"},
        {DriveFailure::notReady, "Metadata of a drive without a disc"},
        {DriveFailure::unreadable, "Metadata of a disc that cannot be read"}};
    for (const auto& [failure, caption] : states) {
        LoadingDrive loading(stage.open().shelf());
        const DrivePlatformOverride platform(loading);
        loading.failure = failure;
        loading.load(60);
        stage.enterMetadata();
        stage.shoot(shots, QLatin1String(caption));
    }
    stage.open({QStringLiteral("/dev/sr7")});
    stage.enterMetadata();
    stage.shoot(shots, QStringLiteral("Metadata of a drive that cannot be opened"));
    stage.app->advanceTo(3);
    WindowDriver::click(stage.app->rip());
    stage.shoot(shots, QStringLiteral("RIP of a drive that cannot be opened"));
}

void metadata(Stage& stage, QList<Shot>& shots)
{
    stage.open();
    stage.loadDisc();
    stage.enterMetadata();
    stage.shoot(shots, QStringLiteral("Metadata that nobody knows"));
    stage.answerMusicBrainz();
    WindowDriver& app = stage.open();
    stage.loadDisc();
    stage.enterMetadata();
    stage.shoot(shots, QStringLiteral("Metadata with a cover"));
    app.album()->setText(QString(300, QLatin1Char('W')));
    app.tracks()->item(1, 1)->setText(QString(300, QChar(u'漢')));
    stage.shoot(shots, QStringLiteral("Metadata with long titles"));
}

void ripping(Stage& stage, QList<Shot>& shots)
{
    WindowDriver& app = stage.open();
    stage.loadDisc();
    app.shelf().mechanism.faults = {SectorFault::flaky(400, 460, 0.6), SectorFault::deadSpot(1700, 1706),
                                    SectorFault::flaky(2100, 2400, 0.3)};
    stage.enterMetadata();
    app.advanceTo(3);
    stage.shoot(shots, QStringLiteral("RIP before the start"));
    bool running = false;
    QObject::connect(app.onPage<QProgressBar>(3, "ripProgress"), &QProgressBar::valueChanged, &app.window(),
                     [&](int value) {
                         if (!running && value >= 50 && value < 100) {
                             running = true;
                             shots.append({QStringLiteral("RIP under way"), app.window().grab()});
                         }
                     });
    stage.shootDialog(shots, QStringLiteral("RIP result box"), app.rip());
    stage.shoot(shots, QStringLiteral("RIP finished"));
}

void audioFile(Stage& stage, QList<Shot>& shots)
{
    WindowDriver& app = stage.open();
    const QString song =
        writeFile(stage.folder.path(), QStringLiteral("A song.wav"), wrapInWave(makeAudio(200, 1)));
    app.pickAudio(song);
    app.advanceTo(2);
    stage.shoot(shots, QStringLiteral("Metadata of an audio file"));
    app.advanceTo(3);
    app.runRip();
    stage.shoot(shots, QStringLiteral("RIP of an audio file"));
}

void verdicts(Stage& stage, QList<Shot>& shots)
{
    const auto begin = [&] {
        stage.open();
        stage.loadDisc();
        stage.rip();
    };
    const auto crc = [](int number) { return ripCrcs.value(number).second; };
    const auto finish = [&](const char* caption) {
        stage.verify();
        stage.shoot(shots, QLatin1String(caption));
    };
    begin();
    finish("Verify of an unknown disc");
    begin();
    stage.answerAccurateRip({{12, crc(1), 1}, {200, crc(2), 1}, {9, crc(3), 1}, {31, crc(4), 1}});
    finish("Verify with a match");
    begin();
    stage.answerAccurateRip({{12, crc(1), 1}, {200, crc(2) ^ 1, 1}, {9, crc(3), 1}, {0, 0, 0}});
    finish("Verify with a partial mismatch");
    begin();
    stage.answerAccurateRip({{12, 5, 1}, {20, 6, 1}, {9, 7, 1}, {31, 8, 1}});
    finish("Verify with no match");
    begin();
    stage.services.on(hosts::accurateRip, "/", errorPage(503));
    finish("Verify with a server error");
    begin();
    ServedAnswer hangUp;
    hangUp.dropped = true;
    stage.services.on(hosts::accurateRip, "/", hangUp);
    finish("Verify without a connection");
}

void settings(Stage& stage, QList<Shot>& shots)
{
    WindowDriver& app = stage.open();
    stage.loadDisc();
    stage.enterMetadata(); // the dialog shows the drive
    bool seen = false;
    const DialogWatcher watcher([&](QDialog* dialog) {
        stage.shoot(shots, QStringLiteral("Settings"), dialog);
        dialog->findChild<QTabWidget*>()->setCurrentIndex(1);
        stage.shoot(shots, QStringLiteral("About"), dialog);
        dialog->reject();
        seen = true;
    });
    WindowDriver::click(app.find<QPushButton>("settingsBtn"));
    static_cast<void>(QTest::qWaitFor([&] { return seen; }, patience));
}

void converting(Stage& stage, QList<Shot>& shots)
{
    WindowDriver& app = stage.open();
    const QString album = stage.folder.path() + QStringLiteral("/Album of one bit");
    QDir().mkpath(album);
    for (const char* name : {"01 First.wav", "02 Second.wav", "03 Third.wav"})
        writeFile(album, QLatin1String(name), wrapInWave(makeAudio(75, 1)));
    writeFile(album, QStringLiteral("04 Broken.dsf"), "DSD ");
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    auto* dialog = app.window().findChild<QDialog*>();
    stage.shoot(shots, QStringLiteral("Convert at the start"), dialog);
    const auto buttons = dialog->findChildren<QPushButton*>();
    pickPath(buttons.constFirst(), album);
    dialog->findChildren<QLineEdit*>().value(1)->setText(stage.folder.path() + QStringLiteral("/Converted"));
    stage.shoot(shots, QStringLiteral("Convert with one-bit audio"), dialog);
    WindowDriver::click(buttons.constLast());
    stage.shoot(shots, QStringLiteral("Convert at the end"), dialog);
}

} // namespace

QList<Shot> playScenes(int language, const QSize& size)
{
    QList<Shot> shots;
    for (const auto scene :
         {sourceAndOutput, withoutDisc, metadata, ripping, audioFile, verdicts, settings, converting}) {
        Stage stage(language, size);
        scene(stage, shots);
    }
    return shots;
}
