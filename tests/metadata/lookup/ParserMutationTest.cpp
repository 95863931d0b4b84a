#include "fuzz/ParserTargets.h"
#include "metadata/lookup/GnuDb.h"
#include "metadata/lookup/MusicBrainz.h"
#include "support/LogCapture.h"
#include "support/ServiceAnswers.h"
#include "verify/AccurateRipDatabase.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr int rounds = 1'500;

QByteArray mutated(QByteArray bytes, std::mt19937& random)
{
    const auto below = [&random](qsizetype limit) {
        return limit <= 0 ? 0 : std::uniform_int_distribution<qsizetype>(0, limit - 1)(random);
    };
    static const QByteArray pieces[] = {
        "{",   "[",  "\"", "\\u0000", "null",        "1e999", "-1",       "TTITLE",     "=",
        " / ", "\n", "\r", "#",       "99999999999", "\xFF",  "\xE3\x81", "\"media\":", "\"releases\":",
        "}",   "]",  ","};
    const qsizetype changes = 1 + below(8);
    for (qsizetype i = 0; i < changes; ++i) {
        const qsizetype place = below(bytes.size());
        switch (below(5)) {
        case 0:
            bytes.truncate(place);
            break;
        case 1:
            bytes.insert(place, pieces[below(std::size(pieces))]);
            break;
        case 2:
            bytes.remove(place, 1 + below(40));
            break;
        case 3:
            bytes.insert(place, bytes.mid(below(bytes.size()), 1 + below(200)));
            break;
        default:
            if (!bytes.isEmpty())
                bytes[place] = static_cast<char>(below(256));
        }
    }
    return bytes;
}

using Target = void (*)(const char*, size_t);

void runOver(Target target, const QList<QByteArray>& seeds, unsigned seed)
{
    const LogCapture quiet;
    std::mt19937 random(seed);
    for (const QByteArray& whole : seeds) {
        for (qsizetype length = 0; length <= whole.size(); ++length)
            target(whole.constData(), static_cast<size_t>(length));
        QByteArray current = whole;
        for (int round = 0; round < rounds; ++round) {
            current = round % 10 == 0 ? mutated(whole, random) : mutated(current, random);
            target(current.constData(), static_cast<size_t>(current.size()));
        }
    }
}

QByteArray musicBrainzSeed()
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("雨"), QStringLiteral("B")}}, {2, {QStringLiteral("C")}}};
    return musicbrainz::discAnswer({musicbrainz::release(release)});
}

ServedRecord recordSeed()
{
    ServedRecord record;
    record.titles = {QStringLiteral("雨"), QStringLiteral("B"), QStringLiteral("C")};
    return record;
}

} // namespace

TEST(ParserMutation, MusicBrainzAnswers)
{
    runOver(fuzz::musicBrainz, {musicBrainzSeed(), musicbrainz::error(QStringLiteral("Not Found"))}, 1);
}

TEST(ParserMutation, XmcdRecords)
{
    runOver(fuzz::xmcd, {gnudb::recordAnswer(recordSeed())}, 2);
}

TEST(ParserMutation, ITunesAnswers)
{
    runOver(fuzz::iTunes,
            {itunes::answer({itunes::album({}), itunes::album({})}),
             itunes::songAnswer({}, {{1, 1, QStringLiteral("雨")}, {2, 1, QStringLiteral("B")}})},
            3);
}

TEST(ParserMutation, VerificationFiles)
{
    const auto pressing = [](quint32 discId, int tracks) {
        QList<accuraterip::Entry> entries;
        for (int i = 0; i < tracks; ++i)
            entries.append({static_cast<quint8>(i + 1), i == 1 ? 0 : 0x1000u + static_cast<quint32>(i), 7});
        return accuraterip::pressing(discId, 2, 3, entries);
    };
    runOver(fuzz::dbar, {pressing(1, 3) + pressing(9, 2) + pressing(1, 3), pressing(1, 99)}, 4);
}

TEST(ParserHugeInput, MegabytesOfTitlesAreReadWhole)
{
    const LogCapture quiet;
    QByteArray text;
    for (int i = 0; i < 100'000; ++i)
        text += "TTITLE" + QByteArray::number(i) + "=" + QByteArray(20, 'x') + "\r\n";
    const GnuDbResult result = parseXmcd(QString::fromUtf8(text));
    ASSERT_EQ(result.tracks.size(), 100'000);
    EXPECT_EQ(result.tracks.last().number, 100'000);
}

TEST(ParserHugeInput, FiftyMegabytesOfJunkAreAMiss)
{
    const LogCapture quiet;
    std::mt19937 random(11);
    QByteArray junk(50'000'000, Qt::Uninitialized);
    for (char& byte : junk)
        byte = static_cast<char>(random());
    EXPECT_TRUE(parseMusicBrainzDisc(junk).title.isEmpty());
    EXPECT_TRUE(parseXmcd(QString::fromUtf8(junk)).album.isEmpty());
    EXPECT_EQ(parseDbar(junk, {2, 1, 2, 3}), QList<QList<ArEntry>>(2));
}
