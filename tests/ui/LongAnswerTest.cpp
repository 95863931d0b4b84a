// Answers with texts longer than anything on a disc.

#include "ui/LookupStage.h"

using namespace lookups;

namespace {

constexpr qsizetype mostCharacters = 32767; // what a text field holds

class LongAnswer : public LookupStage {
protected:
    static QString longText(QChar letter) { return QString(mostCharacters + 1000, letter); }
    static QString cut(QChar letter) { return QString(mostCharacters, letter); }
};

} // namespace

TEST_F(LongAnswer, TitlesOfAReleaseAreCut)
{
    ServedRelease release;
    release.title = longText(u'a');
    release.artists = {longText(u'b')};
    release.media = {{1, {longText(u'c'), QStringLiteral("Short")}}};
    answerRelease(release);
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), cut(u'a'));
    EXPECT_EQ(app.artist()->text(), cut(u'b'));
    EXPECT_EQ(titles(app), (QStringList{cut(u'c'), QStringLiteral("Short")}));
}

TEST_F(LongAnswer, TitlesOfARecordAreCut)
{
    answerGnuDb({longText(u'd'), QStringLiteral("Short")});
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(titles(app), (QStringList{cut(u'd'), QStringLiteral("Short")}));
}

TEST_F(LongAnswer, TitlesOfAnAlbumAreCutAndNoCharacterIsHalved)
{
    answerItunes();
    const QString wide = QString::fromUcs4(U"\U0001F3B5");
    const QString even = wide.repeated(mostCharacters / 2 + 1); // two code units each
    services.on(hosts::iTunes, "/lookup",
                json(itunes::songAnswer(ServedAlbum(), {{1, 1, even}, {1, 2, QLatin1Char('x') + even}})));
    WindowDriver app(2);
    app.pickCue(makeCue());
    enterMetadata(app);
    EXPECT_EQ(titles(app).value(0), wide.repeated(mostCharacters / 2))
        << "32,766, as the next would be half a note";
    EXPECT_EQ(titles(app).value(1), QLatin1Char('x') + wide.repeated(mostCharacters / 2));
}
