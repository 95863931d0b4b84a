// The Metadata page by itself. The window's road to it: MetadataRoadTest, and what
// the services may answer: LookupRoadTest and those beside it.

#include "ui/MetadataPage.h"

#include "support/DialogWatcher.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"
#include "ui/LookupStage.h"
#include "ui/PageStage.h"

#include <QHeaderView>
#include <QImage>
#include <QSignalSpy>
#include <QSpinBox>

#include <new>

namespace {

/// The page with nothing around it.
struct Stage : PageStage {
    explicit Stage(int language = 2) : PageStage(language, oneDrive) { page.show(); }

    QLineEdit* field(int place) { return on<QLineEdit>(page, "formEdit", place); }
    QLineEdit* album() { return field(0); }
    QLineEdit* artist() { return field(1); }
    QLineEdit* year() { return field(2); }
    QSpinBox* discNumber() { return on<QSpinBox>(page, "formEdit", 0); }
    QSpinBox* discTotal() { return on<QSpinBox>(page, "formEdit", 1); }
    QTableWidget* tracks() { return on<QTableWidget>(page, "trackTable"); }
    QString cell(int row, int column) { return tracks()->item(row, column)->text(); }
    QLabel* art() { return on<QLabel>(page, "artLabel"); }
    QLabel* notice() { return on<QLabel>(page, "driveNotice"); }

    void loadDisc(const QList<SimulatedTrack>& layout)
    {
        shelf.audio = makeAudio(5000, 1);
        shelf.tracks = layout;
    }
    void enterDrive() { page.enter({shelf.letter, {}, {}}); }
    bool waitForLookups(int number)
    {
        return QTest::qWaitFor([this, number] { return ended.size() == number; }, 60000);
    }

    MetadataPage page{disc};
    QSignalSpy started{&page, &MetadataPage::lookupStarted};
    QSignalSpy ended{&page, &MetadataPage::lookupEnded};
};

class MetadataPageTest : public ServiceStage {
protected:
    QString makeSheet(int sectors = 400)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {160, QString()}};
        return writeImage(folder.path(), image, makeAudio(sectors, 1));
    }

    /// A release of two media of one and of two tracks.
    void answerSetOfTwo()
    {
        ServedRelease release;
        release.media = {{1, {QStringLiteral("Reed")}},
                         {2, {QStringLiteral("Rain"), QStringLiteral("Rush")}}};
        services.on(hosts::musicBrainz, lookups::discQuery,
                    json(musicbrainz::discAnswer({musicbrainz::release(release)})));
    }
};

QString header(QTableWidget* table, int column)
{
    return table->horizontalHeaderItem(column)->text();
}

} // namespace

TEST_F(MetadataPageTest, TextsAndSizesInEnglish)
{
    Stage stage(2);
    EXPECT_EQ(on<QLabel>(stage.page, "stepHeading")->text(),
              QStringLiteral("Check and edit the album information"));
    EXPECT_EQ(on<QPushButton>(stage.page, "browseBtn")->text(), QStringLiteral("Select Art"));
    const QStringList labels{"Album", "Artist", "Year", "DISC", " /  "};
    for (int i = 0; i < labels.size(); ++i)
        EXPECT_EQ(on<QLabel>(stage.page, "formLabel", i)->text(), labels[i]);
    EXPECT_EQ(on<QLabel>(stage.page, "sectionLabel")->text(), QStringLiteral("Track List"));
    auto* art = on<QLabel>(stage.page, "artLabel");
    EXPECT_EQ(art->text(), QStringLiteral("♪"));
    EXPECT_EQ(art->size(), QSize(140, 140));
    auto* table = stage.tracks();
    EXPECT_EQ(header(table, 0), QStringLiteral("#"));
    EXPECT_EQ(header(table, 1), QStringLiteral("Title"));
    EXPECT_EQ(header(table, 2), QStringLiteral("Time"));
    EXPECT_EQ(table->columnWidth(0), 40);
    EXPECT_EQ(table->columnWidth(2), 70);
    EXPECT_EQ(table->height(), 180);
    EXPECT_TRUE(table->verticalHeader()->isHidden());
    for (const int place : {0, 1}) {
        auto* spin = on<QSpinBox>(stage.page, "formEdit", place);
        EXPECT_EQ(spin->minimum(), 1);
        EXPECT_EQ(spin->maximum(), 99);
        EXPECT_EQ(spin->value(), 1);
        EXPECT_EQ(spin->width(), 60);
    }
}

TEST_F(MetadataPageTest, TextsInJapanese)
{
    Stage stage(1);
    EXPECT_EQ(on<QLabel>(stage.page, "stepHeading")->text(),
              QStringLiteral("アルバム情報を確認・編集してください"));
    EXPECT_EQ(on<QPushButton>(stage.page, "browseBtn")->text(), QStringLiteral("アートを選択"));
    const QStringList labels{"アルバム", "アーティスト", "年", "DISC", " /  "};
    for (int i = 0; i < labels.size(); ++i)
        EXPECT_EQ(on<QLabel>(stage.page, "formLabel", i)->text(), labels[i]);
    EXPECT_EQ(on<QLabel>(stage.page, "sectionLabel")->text(), QStringLiteral("トラックリスト"));
    EXPECT_EQ(header(stage.tracks(), 1), QStringLiteral("曲名"));
    EXPECT_EQ(header(stage.tracks(), 2), QStringLiteral("時間"));
}

TEST_F(MetadataPageTest, ADiscFillsTheTableAndIsLookedUp)
{
    Stage stage;
    stage.loadDisc({{0, false}, {4650, true}});
    stage.enterDrive();
    EXPECT_EQ(stage.started.size(), 1);
    EXPECT_EQ(stage.ended.size(), 0);
    EXPECT_EQ(stage.album()->placeholderText(), QStringLiteral("Searching..."));
    ASSERT_EQ(stage.tracks()->rowCount(), 2);
    EXPECT_EQ(stage.cell(0, 0), QStringLiteral("01"));
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Track 1"));
    EXPECT_EQ(stage.cell(0, 2), QStringLiteral("1:02")); // 4650 sectors
    EXPECT_EQ(stage.cell(1, 1), QStringLiteral("(data track - not audio, will not be ripped)"));
    EXPECT_EQ(stage.tracks()->rowHeight(1), 26);
    EXPECT_EQ(stage.page.tracks(),
              (QList<TrackRow>{
                  {QStringLiteral("01"), QStringLiteral("Track 1")},
                  {QStringLiteral("02"), QStringLiteral("(data track - not audio, will not be ripped)")}}));
    ASSERT_TRUE(stage.waitForLookups(1));
    EXPECT_EQ(stage.album()->placeholderText(), QStringLiteral("Not found. Please enter it manually"));
    EXPECT_EQ(stage.artist()->placeholderText(), QStringLiteral("Enter artist name"));
    EXPECT_EQ(stage.year()->placeholderText(), QStringLiteral("Year"));
}

TEST_F(MetadataPageTest, TheDataTrackNoteInJapanese)
{
    Stage stage(1);
    stage.loadDisc({{0, false}, {200, true}});
    stage.enterDrive();
    EXPECT_EQ(stage.cell(1, 1), QStringLiteral("（データトラック・音声ではないため取り込みません）"));
    EXPECT_EQ(stage.album()->placeholderText(), QStringLiteral("検索中..."));
}

TEST_F(MetadataPageTest, ADriveThatIsGoneLeavesThePageEmptyAndSaysSo)
{
    Stage stage;
    stage.page.enter({QStringLiteral("/dev/sr7"), {}, {}});
    EXPECT_EQ(stage.tracks()->rowCount(), 0);
    EXPECT_EQ(stage.started.size(), 0);
    EXPECT_TRUE(stage.notice()->isVisible());
    EXPECT_TRUE(stage.notice()->text().startsWith(QStringLiteral("The drive could not be opened.")));
    stage.page.enter({});
    EXPECT_FALSE(stage.notice()->isVisible()) << "an entry without a source takes the line away";
}

TEST_F(MetadataPageTest, ADiscThatIsBeingRippedStaysAsItIs)
{
    Stage stage;
    stage.loadDisc({{0}, {200}});
    stage.enterDrive();
    ASSERT_TRUE(stage.waitForLookups(1));
    stage.tracks()->item(0, 1)->setText(QStringLiteral("Mine"));
    ASSERT_TRUE(stage.disc.drive.borrow());
    stage.enterDrive();
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Mine"));
    EXPECT_EQ(stage.started.size(), 1);
    EXPECT_FALSE(stage.notice()->isVisible());
    stage.disc.drive.giveBack();
    stage.enterDrive();
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Track 1"));
}

TEST_F(MetadataPageTest, AnAudioFileIsOneTrackAndNobodyIsAsked)
{
    for (const int language : {1, 2}) {
        Stage stage(language);
        stage.page.enter(
            {QStringLiteral("/dev/sr0"), QStringLiteral("/a.cue"), QStringLiteral("/music/a.b.wav")});
        ASSERT_EQ(stage.tracks()->rowCount(), 1);
        EXPECT_EQ(stage.cell(0, 0), QStringLiteral("01"));
        EXPECT_EQ(stage.cell(0, 1), QStringLiteral("a.b"));
        EXPECT_EQ(stage.cell(0, 2), QStringLiteral("—"));
        EXPECT_EQ(stage.album()->placeholderText(), textIn(language, "アルバム名を入力", "Enter album name"));
        EXPECT_EQ(stage.artist()->placeholderText(),
                  textIn(language, "アーティスト名を入力", "Enter artist name"));
        EXPECT_TRUE(stage.disc.isAudioFile());
        EXPECT_EQ(stage.started.size(), 0);
        EXPECT_TRUE(stage.shelf.commands.isEmpty());
    }
}

TEST_F(MetadataPageTest, ASheetIsShownAndLookedUpOnEntry)
{
    Stage stage;
    ASSERT_TRUE(stage.disc.openSheet(makeSheet()));
    stage.page.showSheet();
    EXPECT_EQ(stage.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(stage.artist()->text(), QStringLiteral("Test Artist"));
    EXPECT_EQ(stage.year()->text(), QStringLiteral("1998"));
    ASSERT_EQ(stage.tracks()->rowCount(), 2);
    EXPECT_EQ(stage.tracks()->rowHeight(0), 26);
    EXPECT_EQ(stage.cell(0, 0), QStringLiteral("01"));
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Alpha"));
    EXPECT_EQ(stage.cell(0, 2), QStringLiteral("0:02")); // 160 sectors
    EXPECT_EQ(stage.cell(1, 1), QString());
    EXPECT_EQ(stage.cell(1, 2), QStringLiteral("0:03")); // 240 sectors

    stage.page.enter({QStringLiteral("/dev/sr0"), QStringLiteral("/a.cue"), {}});
    EXPECT_EQ(stage.started.size(), 1);
    EXPECT_TRUE(stage.shelf.commands.isEmpty());
    ASSERT_TRUE(stage.waitForLookups(1));
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Alpha"));
}

TEST_F(MetadataPageTest, ASheetThatGaveNoDiscIsNotLookedUp)
{
    Stage stage;
    stage.page.enter({{}, QStringLiteral("/broken.cue"), {}});
    EXPECT_EQ(stage.started.size(), 0);
}

TEST_F(MetadataPageTest, AFieldThatTheSheetDoesNotNameKeepsWhatItHolds)
{
    Stage stage;
    stage.album()->setText(QStringLiteral("Mine"));
    ImageDescription image;
    image.album.clear();
    image.tracks = {{0, QStringLiteral("Alpha")}};
    ASSERT_TRUE(stage.disc.openSheet(writeImage(folder.path(), image, makeAudio(60, 1))));
    stage.page.showSheet();
    EXPECT_EQ(stage.album()->text(), QStringLiteral("Mine"));
    EXPECT_EQ(stage.artist()->text(), QStringLiteral("Test Artist"));
}

// What leaves a slot ends the program.
TEST_F(MetadataPageTest, WantOfMemoryForTheCoverOfASheetIsNoCover)
{
    Stage stage;
    ASSERT_TRUE(stage.disc.openSheet(makeSheet()));
    FakeHttpTransport exhausted([](const HttpRequest&) -> HttpAnswer { throw std::bad_alloc(); });
    const LogCapture log;
    {
        const HttpTransportOverride inPlace(exhausted);
        stage.page.showSheet();
    }
    EXPECT_EQ(exhausted.requests().size(), 1);
    EXPECT_EQ(stage.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(stage.tracks()->rowCount(), 2);
    EXPECT_EQ(stage.art()->text(), QStringLiteral("♪"));
    EXPECT_TRUE(log.warnings().contains(QStringLiteral("[Meta/CUE] cover given up: std::bad_alloc")));
}

TEST_F(MetadataPageTest, ADiscOfASetIsToldByItsTracksAndASheetIsNot)
{
    answerSetOfTwo();
    Stage stage;
    stage.loadDisc({{0}, {200}});
    stage.enterDrive();
    ASSERT_TRUE(stage.waitForLookups(1));
    EXPECT_EQ(stage.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(stage.artist()->text(), QStringLiteral("Marsh Choir"));
    EXPECT_EQ(stage.year()->text(), QStringLiteral("1998"));
    EXPECT_EQ(stage.discNumber()->value(), 2);
    EXPECT_EQ(stage.discTotal()->value(), 2);
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Reed")) << "the titles are those of the first medium";

    stage.page.clear();
    ASSERT_TRUE(stage.disc.openSheet(makeSheet()));
    stage.page.enter({{}, QStringLiteral("/a.cue"), {}});
    ASSERT_TRUE(stage.waitForLookups(2));
    EXPECT_EQ(stage.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(stage.discNumber()->value(), 1);
    EXPECT_EQ(stage.discTotal()->value(), 1);
}

TEST_F(MetadataPageTest, ACoverIsShownInItsBoxAndAnUnreadableOneIgnored)
{
    Stage stage;
    QImage picture(400, 200, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString path = folder.filePath(QStringLiteral("cover.png"));
    ASSERT_TRUE(picture.save(path));
    auto* opener = on<QPushButton>(stage.page, "browseBtn");
    for (const QString& picked :
         {path, writeFile(folder.path(), QStringLiteral("bad.png"), "no picture"), QString()}) {
        pickPath(opener, picked);
        EXPECT_EQ(stage.art()->pixmap().size(), QSize(140, 70));
        EXPECT_EQ(stage.page.album().cover.size(), QSize(400, 200)) << "at its full size";
    }
}

TEST_F(MetadataPageTest, TheAlbumIsWhatStandsInTheFields)
{
    Stage stage;
    stage.album()->setText(QStringLiteral("Blue"));
    stage.artist()->setText(QStringLiteral("Ada"));
    stage.year()->setText(QStringLiteral("1971"));
    stage.discNumber()->setValue(2);
    stage.discTotal()->setValue(3);
    const AlbumFields album = stage.page.album();
    EXPECT_EQ(album.title, QStringLiteral("Blue"));
    EXPECT_EQ(album.artist, QStringLiteral("Ada"));
    EXPECT_EQ(album.year, QStringLiteral("1971"));
    EXPECT_EQ(album.discNumber, 2);
    EXPECT_EQ(album.discTotal, 3);
    EXPECT_TRUE(album.cover.isNull());
}

TEST_F(MetadataPageTest, CommittedTitlesReachTheDiscUnlessTheyLookGenerated)
{
    Stage stage;
    ASSERT_TRUE(stage.disc.openSheet(makeSheet()));
    stage.page.showSheet();
    stage.tracks()->item(0, 1)->setText(QStringLiteral("Track  44"));
    stage.tracks()->setCurrentCell(1, 1);
    stage.tracks()->editItem(stage.tracks()->item(1, 1));
    auto* editor = stage.tracks()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("Typed"));
    stage.page.commitTitles();
    EXPECT_EQ(stage.disc.toc.tracks[0].title, QStringLiteral("Alpha"));
    EXPECT_EQ(stage.disc.toc.tracks[1].title, QStringLiteral("Typed")) << "out of the open cell";
}

TEST_F(MetadataPageTest, ClearedThePageIsAsAtTheStart)
{
    Stage stage;
    ASSERT_TRUE(stage.disc.openSheet(makeSheet()));
    stage.page.showSheet();
    stage.discNumber()->setValue(2);
    stage.discTotal()->setValue(3);
    stage.page.enter({QStringLiteral("/dev/sr7"), {}, {}});
    for (int place = 0; place < 3; ++place)
        stage.field(place)->setPlaceholderText(QStringLiteral("something"));
    stage.page.clear();
    for (int place = 0; place < 3; ++place) {
        EXPECT_EQ(stage.field(place)->text(), QString());
        EXPECT_EQ(stage.field(place)->placeholderText(), QString());
    }
    EXPECT_EQ(stage.tracks()->rowCount(), 0);
    EXPECT_EQ(stage.discNumber()->value(), 1);
    EXPECT_EQ(stage.discTotal()->value(), 1);
    EXPECT_FALSE(stage.notice()->isVisible());
    EXPECT_EQ(stage.art()->text(), QStringLiteral("♪"));
    EXPECT_TRUE(stage.page.album().cover.isNull());
}

TEST_F(MetadataPageTest, TheFocusGoesToTheAlbum)
{
    Stage stage;
    stage.page.focusFirst();
    EXPECT_EQ(stage.page.focusWidget(), stage.album());
}
