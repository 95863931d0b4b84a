// How the window goes, and the process with it.

#include "ui/LookupStage.h"

#include "ui/LookupChains.h"
#include "ui/RecordedEnd.h"

#include <QApplication>
#include <QFile>
#include <QRadioButton>
#include <QTimer>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <functional>
#include <thread>
#include <utility>

namespace {

/// A file of a rip that takes a few bytes and then makes its writer wait.
class StuckFile {
public:
    explicit StuckFile(const QString& path)
    {
        const QByteArray name = QFile::encodeName(path);
        made = mkfifo(name.constData(), 0600) == 0;
        reader = open(name.constData(), O_RDONLY | O_NONBLOCK);
    }
    ~StuckFile()
    {
        letGo();
        if (drain.joinable())
            drain.join();
        close(reader);
    }
    StuckFile(const StuckFile&) = delete;
    StuckFile& operator=(const StuckFile&) = delete;

    bool isMade() const { return made && reader >= 0; }
    bool isWrittenTo() const
    {
        pollfd asked{reader, POLLIN, 0};
        return poll(&asked, 1, 0) == 1 && (asked.revents & POLLIN);
    }
    /// Takes all that comes, until the writer has closed the file.
    void letGo()
    {
        if (drain.joinable())
            return;
        fcntl(reader, F_SETFL, 0);
        drain = std::thread([this] {
            std::array<char, 65536> bytes;
            while (read(reader, bytes.data(), bytes.size()) > 0) {
            }
        });
    }

private:
    bool made = false;
    int reader = -1;
    std::thread drain;
};

class WindowEnd : public LookupStage {
protected:
    QString makeLongCue()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}};
        return writeImage(folder.path(), image, makeAudio(100, 1));
    }

    /// To the RIP step, with WAV files as the choice.
    void prepareRip(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
        ASSERT_EQ(app.step(), 3);
    }
};

} // namespace

TEST_F(WindowEnd, ARipThatHangsIsLeftBehindWithoutItsUnfinishedFile)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("Test Artist - Test Album")));
    const QString unfinished = folder.filePath(QStringLiteral("Test Artist - Test Album/01. Alpha.wav"));
    StuckFile file(unfinished);
    ASSERT_TRUE(file.isMade());
    WindowDriver app(2);
    app.pickCue(makeLongCue());
    prepareRip(app);
    bool removed = false;
    RecordedEnd end([&] {
        removed = !QFileInfo::exists(unfinished);
        file.letGo();
    });
    const AbruptEndOverride inPlace(end);
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&] { return file.isWrittenTo(); }, 60000));
    const qint64 taken = app.destroyWindow();
    EXPECT_EQ(end.calls, 1);
    EXPECT_TRUE(removed);
    EXPECT_GE(taken, 3500) << "the rip was given its time";
}

TEST_F(WindowEnd, NoTimeIsLostOnTheRipsOwnLookup)
{
    services.onInTurn(hosts::musicBrainz, lookups::discQuery, {errorPage(404), silence()});
    WindowDriver app(2, drive());
    loadDisc(app);
    prepareRip(app);
    const auto asked = [this] {
        const QList<QByteArray> targets = services.targets(hosts::musicBrainz);
        return std::count_if(targets.cbegin(), targets.cend(),
                             [](const QByteArray& target) { return target.startsWith(lookups::discQuery); });
    };
    ASSERT_EQ(asked(), 1) << "by the Metadata step";
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked() == 2; }, 60000));
    endLookups();
    EXPECT_LT(app.destroyWindow(), 2000);
}

TEST_F(WindowEnd, FinishClosesTheWindowAndSoEndsTheProcess)
{
    WindowDriver app(2);
    app.pickCue(makeCue());
    prepareRip(app);
    ASSERT_FALSE(app.runRip().isEmpty());
    WindowDriver::click(app.next());
    ASSERT_EQ(app.next()->text(), QStringLiteral("Finish"));

    constexpr int neverEnded = 99;
    QTimer tooLate;
    QObject::connect(&tooLate, &QTimer::timeout, [] { QCoreApplication::exit(neverEnded); });
    tooLate.start(20000);
    QGuiApplication::setQuitOnLastWindowClosed(true); // as it is in the program
    QTimer::singleShot(0, &app.window(), [&app] { WindowDriver::click(app.next()); });
    EXPECT_EQ(QApplication::exec(), 0);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    EXPECT_FALSE(app.window().isVisible());
}
