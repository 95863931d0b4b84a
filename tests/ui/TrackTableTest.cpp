#include "ui/TrackTable.h"

#include "disc/DiscModel.h"
#include "support/Language.h"

#include <QSettings>
#include <QTableWidget>

#include <memory>

#include <gtest/gtest.h>

namespace {

class TrackTableTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QSettings().clear();
        speak(2);
    }

    static TrackInfo track(int number, const QString& title, int seconds, bool isData = false)
    {
        TrackInfo made;
        made.number = number;
        made.title = title;
        made.seconds = seconds;
        made.isData = isData;
        return made;
    }
    static DiscToc disc()
    {
        DiscToc made;
        made.tracks = {track(1, QStringLiteral("Alpha"), 59), track(2, QString(), 600),
                       track(12, QStringLiteral("Code"), 61, true)};
        return made;
    }
    QStringList row(int number) const
    {
        QStringList texts;
        for (int column = 0; column < 3; ++column)
            texts << table->item(number, column)->text();
        return texts;
    }

    std::unique_ptr<QTableWidget> table{tracktable::make({"a", "b", "c"}, 40, 70)};
};

} // namespace

TEST_F(TrackTableTest, ADiscsTracksHaveATitleEach)
{
    tracktable::showDisc(table.get(), disc());
    ASSERT_EQ(table->rowCount(), 3);
    EXPECT_EQ(row(0), (QStringList{"01", "Alpha", "0:59"}));
    EXPECT_EQ(row(1), (QStringList{"02", "Track 2", "10:00"}));
    EXPECT_EQ(row(2), (QStringList{"12", "(data track - not audio, will not be ripped)", "1:01"}));
    EXPECT_EQ(tracktable::rowsOf(disc()),
              (QList<TrackRow>{{"01", "Alpha"}, {"02", "Track 2"}, {"12", "Code"}}));
}

TEST_F(TrackTableTest, ASheetsTracksHaveTheTitlesOfTheSheet)
{
    tracktable::showDisc(table.get(), disc());
    tracktable::showSheet(table.get(), disc());
    ASSERT_EQ(table->rowCount(), 3);
    EXPECT_EQ(row(1), (QStringList{"02", QString(), "10:00"}));
    EXPECT_EQ(row(2), (QStringList{"12", "Code", "1:01"}));
    EXPECT_EQ(tracktable::rows(table.get()), (QList<TrackRow>{{"01", "Alpha"}, {"02", {}}, {"12", "Code"}}));
}

TEST_F(TrackTableTest, FoundTitlesFillTheRowsThatThereAre)
{
    tracktable::showDisc(table.get(), disc());
    tracktable::fillTitles(table.get(), {"Reed", {}, "Rain", "Rush"}, false);
    EXPECT_EQ(tracktable::rows(table.get()),
              (QList<TrackRow>{{"01", "Reed"}, {"02", "Track 2"}, {"12", "Rain"}}));
    tracktable::fillTitles(table.get(), {"One", {}}, true);
    EXPECT_EQ(tracktable::rows(table.get()), (QList<TrackRow>{{"01", "One"}, {"02", {}}, {"12", "Rain"}}));
}

TEST_F(TrackTableTest, TitlesAreTakenUnlessTheyAreEmptyOrLookGenerated)
{
    DiscToc edited = disc();
    tracktable::showDisc(table.get(), edited);
    for (const auto& [number, title] : {std::pair(0, "Track  44"), {1, "Track 2b"}, {2, ""}})
        table->item(number, tracktable::titleColumn)->setText(QLatin1String(title));
    tracktable::takeTitles(table.get(), edited.tracks);
    EXPECT_EQ(edited.tracks[0].title, QStringLiteral("Alpha"));
    EXPECT_EQ(edited.tracks[1].title, QStringLiteral("Track 2b"));
    EXPECT_EQ(edited.tracks[2].title, QStringLiteral("Code"));

    edited.tracks.removeLast();
    table->item(0, tracktable::titleColumn)->setText(QStringLiteral("Mine"));
    tracktable::takeTitles(table.get(), edited.tracks);
    EXPECT_EQ(edited.tracks[0].title, QStringLiteral("Mine")) << "more rows than tracks";
}
