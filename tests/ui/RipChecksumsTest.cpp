// What a rip keeps for the verification, against sums written out here.

#include "ui/VerifyStage.h"

#include "base/ByteOrder.h"

#include <QComboBox>

namespace {

struct Sums {
    quint32 v1 = 0;
    quint32 v2 = 0;
};

class RipChecksums : public VerifyStage {
protected:
    /// A frame of the disc, the left sample in the low half.
    static quint32 frameAt(const QByteArray& audio, qsizetype frame)
    {
        return byteorder::readLittle<quint32>(audio.constData() + 4 * frame);
    }

    /// Both checksums of the sectors from one on, position by position.
    static Sums sumsOf(const QByteArray& audio, qsizetype firstSector, qsizetype sectors, bool isFirst,
                       bool isLast)
    {
        const qsizetype frames = 588 * sectors;
        Sums sums;
        for (qsizetype position = 1; position <= frames; ++position) {
            if ((isFirst && position < 2940) || (isLast && position > frames - 2940))
                continue;
            const quint64 product =
                quint64{frameAt(audio, 588 * firstSector + position - 1)} * static_cast<quint64>(position);
            sums.v1 += static_cast<quint32>(product & 0xFFFFFFFF);
            sums.v2 += static_cast<quint32>(product & 0xFFFFFFFF) + static_cast<quint32>(product >> 32);
        }
        return sums;
    }

    static std::pair<quint32, quint32> pairOf(const Sums& sums) { return {sums.v1, sums.v2}; }

    void resetFromTheRipStep(WindowDriver& app)
    {
        while (app.step() > 0)
            WindowDriver::click(app.back());
        WindowDriver::click(app.reset());
    }
};

} // namespace

TEST_F(RipChecksums, AreKeptByTrackInTheirOrder)
{
    WindowDriver app(2, drive());
    rip(app, {{0}, {100}});
    const QByteArray& audio = app.shelf().audio;
    const Sums first = sumsOf(audio, 0, 100, true, false);
    const Sums second = sumsOf(audio, 100, 500, false, true);
    ASSERT_NE(first.v1, first.v2);
    ASSERT_NE(second.v1, second.v2);
    EXPECT_EQ(ripCrcs.size(), 2);
    EXPECT_EQ(ripCrcs.value(1), pairOf(first));
    EXPECT_EQ(ripCrcs.value(2), pairOf(second));

    // The database knows the older sum of track 1 and the newer one of track 2; the
    // newer one is shown.
    serve({{12, first.v1, 1}, {3, second.v2, 1}});
    verify(app);
    EXPECT_EQ(verdict(app), QStringLiteral("✦  Match  — Confidence 3"));
    const auto shown = [](const Sums& sums) {
        return QStringLiteral("%1").arg(sums.v2, 8, 16, QChar(u'0')).toUpper();
    };
    EXPECT_TRUE(app.logLines().contains(
        QStringLiteral("  Track 01  [%1]  accurately ripped (confidence 12)").arg(shown(first))));
    EXPECT_TRUE(app.logLines().contains(
        QStringLiteral("  Track 02  [%1]  accurately ripped (confidence 3)").arg(shown(second))));
}

// Sectors 440 to 461 of a track; one of fewer than 462 sectors has none.
TEST_F(RipChecksums, TheFramesOf22SectorsAreKeptOfALongTrack)
{
    WindowDriver app(2, drive());
    rip(app, {{0}, {100}});
    QList<quint32> expected;
    for (qsizetype frame = 588 * (100 + 440); frame < 588 * (100 + 462); ++frame)
        expected << frameAt(app.shelf().audio, frame);
    EXPECT_EQ(ripFrameWindows.keys(), QList<int>{2});
    EXPECT_TRUE(ripFrameWindows.value(2) == expected);
}

TEST_F(RipChecksums, OutliveAResetAndGoWhenTheNextRipStarts)
{
    WindowDriver app(2, drive());
    rip(app, {{0}, {100}});
    resetFromTheRipStep(app);
    EXPECT_EQ(ripCrcs.size(), 2);
    EXPECT_EQ(ripFrameWindows.size(), 1);

    // Without a source nothing starts.
    app.advanceTo(3);
    WindowDriver::click(app.rip());
    EXPECT_EQ(ripCrcs.size(), 2);
    EXPECT_EQ(ripFrameWindows.size(), 1);

    resetFromTheRipStep(app);
    app.onPage<QComboBox>(0, "driveCombo")->setCurrentIndex(0);
    rip(app, {{0}, {100, true}});
    EXPECT_EQ(ripCrcs.keys(), QList<int>{1});
    EXPECT_EQ(ripCrcs.value(1), pairOf(sumsOf(app.shelf().audio, 0, 100, true, true)));
    EXPECT_TRUE(ripFrameWindows.isEmpty());
}
