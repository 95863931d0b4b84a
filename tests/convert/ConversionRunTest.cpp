#include "convert/ConversionRun.h"

#include "codecs/EncoderOptions.h"
#include "convert/FolderOfAudio.h"
#include "support/DiscMaker.h"
#include "support/HiddenFile.h"
#include "support/Language.h"
#include "support/Tool.h"

#include <QDir>

#include <gtest/gtest.h>

#include <cmath>

namespace {

class ConversionRunTest : public ::testing::Test {
protected:
    void SetUp() override { speak(2); }
    void TearDown() override { encoderOptions = EncoderOptions(); }

    ConversionCounts run(const char* format = "FLAC")
    {
        ConversionRun conversion(place.source(), place.output(), QLatin1String(format),
                                 [this](const QString& text) {
                                     texts << text;
                                     return true;
                                 });
        return conversion.convert(audioFilesIn(place.source()));
    }

    QStringList namesFound() const
    {
        QStringList names;
        for (const QFileInfo& file : audioFilesIn(place.source()))
            names << file.fileName();
        return names;
    }

    FolderOfAudio place;
    QStringList texts;
};

using Counts = std::array<int, 3>;

Counts numbers(const ConversionCounts& counts)
{
    return {counts.converted, counts.failed, counts.skipped};
}

QString gainTag(const QString& path, const QString& key)
{
    const ToolResult result =
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--show-tag=") + key, path});
    return QString::fromUtf8(result.output).trimmed().section(QLatin1Char('='), 1);
}

/// Integrated loudness in LUFS, by ffmpeg's own meter.
double loudnessOf(const QStringList& inputs)
{
    QStringList arguments{QStringLiteral("-hide_banner"), QStringLiteral("-nostats")};
    for (const QString& input : inputs)
        arguments << QStringLiteral("-i") << input;
    arguments << QStringLiteral("-filter_complex")
              << QStringLiteral("concat=n=%1:v=0:a=1,ebur128").arg(inputs.size()) << QStringLiteral("-f")
              << QStringLiteral("null") << QStringLiteral("-");
    const QString report = QString::fromUtf8(runTool(QStringLiteral("ffmpeg"), arguments).errors);
    const QString summary = report.mid(report.lastIndexOf(QStringLiteral("Integrated loudness")));
    const auto start = summary.indexOf(QStringLiteral("I:")) + 2;
    return summary.mid(start, summary.indexOf(QStringLiteral("LUFS")) - start).trimmed().toDouble();
}

double decibels(const QString& tag)
{
    EXPECT_TRUE(tag.endsWith(QStringLiteral(" dB"))) << tag.toStdString();
    return tag.chopped(3).toDouble();
}

} // namespace

TEST(ConversionFormat, EncoderAndEndingFollowTheDataExactly)
{
    const std::array<std::tuple<const char*, EncoderId, const char*>, 7> expected{{
        {"WAV", WavEncoderId, "wav"},
        {"FLAC", FlacEncoderId, "flac"},
        {"MP3", Mp3EncoderId, "mp3"},
        {"AAC", WavEncoderId, "m4a"},
        {"ALAC", WavEncoderId, "m4a"},
        {"flac", WavEncoderId, "wav"},
        {"", WavEncoderId, "wav"},
    }};
    for (const auto& [data, id, extension] : expected) {
        EXPECT_EQ(encoderIdOf(QLatin1String(data)), id) << data;
        EXPECT_EQ(outputExtension(QLatin1String(data)), QLatin1String(extension)) << data;
    }
}

TEST_F(ConversionRunTest, FindsTheTwelveEndingsInAnyCaseAndNothingElse)
{
    const QStringList wanted{"a.wav", "b.aiff", "c.aif",  "d.mp3", "e.flac", "f.aac",
                             "g.m4a", "h.OGG",  "i.opus", "j.Wv",  "k.dsf",  "l.dff"};
    for (const QString& name : wanted + QStringList{"m.wma", "n.txt", "wav", "o.wav.bak"})
        place.add(name, "x");
    hideFile(place.add(QStringLiteral(".p.wav"), "x"));
    QDir().mkpath(place.source() + QStringLiteral("/folder.wav"));
    EXPECT_EQ(namesFound(), wanted);
}

TEST_F(ConversionRunTest, SortsByNameAsTheLocaleDoes)
{
    for (const char* name : {"b.wav", "A.wav", "c.wav", "10.wav", "02.wav"})
        place.add(QLatin1String(name), "x");
    const QStringList found = namesFound();
    ASSERT_EQ(found.size(), 5);
    for (qsizetype i = 1; i < found.size(); ++i)
        EXPECT_LT(QString::localeAwareCompare(found[i - 1], found[i]), 0);
    EXPECT_EQ(found.first(), QStringLiteral("02.wav"));
}

TEST_F(ConversionRunTest, FlacAndWavHoldTheSamplesOfTheSource)
{
    place.addWave(QStringLiteral("one.wav"), 1);
    place.addWave(QStringLiteral("two.wav"), 2);
    EXPECT_EQ(numbers(run()), (Counts{2, 0, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/one.flac", "Album/two.flac"}));
    EXPECT_EQ(samplesOf(place.runFolder() + QStringLiteral("/one.flac")), makeAudio(1, 1));
    EXPECT_EQ(samplesOf(place.runFolder() + QStringLiteral("/two.flac")), makeAudio(1, 2));
    EXPECT_TRUE(
        runTool(QStringLiteral("flac"), {"-t", "-s", place.runFolder() + QStringLiteral("/one.flac")}).ok());
    EXPECT_EQ(texts, (QStringList{"Converting (1/2): one.wav", "Converting (2/2): two.wav"}));
}

TEST_F(ConversionRunTest, EveryFormatIsReachedFromAnother)
{
    const QString wave = place.addWave(QStringLiteral("song.wav"), 5, 30);
    EXPECT_EQ(numbers(run("MP3")), (Counts{1, 0, 0}));
    const QByteArray lossy = samplesOf(place.runFolder() + QStringLiteral("/song.mp3"));
    EXPECT_NEAR(static_cast<double>(lossy.size()), 30 * 2352.0, 4 * 1152 * 4);
    ASSERT_TRUE(runTool(QStringLiteral("sox"), {wave, place.source() + QStringLiteral("/song.aiff")}).ok());
    ASSERT_TRUE(QFile::remove(wave));
    EXPECT_EQ(numbers(run("WAV")), (Counts{1, 0, 0}));
    EXPECT_EQ(samplesOf(place.output() + QStringLiteral("/Album - Copy/song.wav")), makeAudio(30, 5));
}

TEST_F(ConversionRunTest, SkipsTheContainerThatIsWantedAndNoOther)
{
    for (const char* name : {"1.flac", "2.FLAC", "3.aif", "4.AIFF", "5.aac", "6.m4a"})
        place.add(QLatin1String(name), "not audio");
    EXPECT_EQ(numbers(run()), (Counts{0, 4, 2}));
    EXPECT_EQ(texts.mid(0, 3), (QStringList{"Skipped (1/6): 1.flac — source and output are the same format",
                                            "Skipped (2/6): 2.FLAC — source and output are the same format",
                                            "Converting (3/6): 3.aif"}));
    // MPEG-4 as target is the one container that is never skipped.
    EXPECT_EQ(numbers(run("AAC")), (Counts{0, 6, 0}));
}

TEST_F(ConversionRunTest, TextsInJapanese)
{
    speak(1);
    place.add(QStringLiteral("1.flac"), "x");
    place.addWave(QStringLiteral("2 %1 %3.wav"));
    run();
    EXPECT_EQ(texts, (QStringList{"処理不可 (1/2): 1.flac — 変換元と出力先が同じ形式です",
                                  "変換中 (2/2): 2 %1 %3.wav"}));
    run();
    EXPECT_EQ(place.outputTree(),
              (QStringList{"Album", "Album - コピー", "Album - コピー/2 %1 %3.flac", "Album/2 %1 %3.flac"}));
}

TEST_F(ConversionRunTest, OnlyTheLastSuffixIsReplaced)
{
    place.addWave(QStringLiteral("No. 5 in C.minor.WAV"));
    EXPECT_EQ(numbers(run()), (Counts{1, 0, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/No. 5 in C.minor.flac"}));
}

TEST_F(ConversionRunTest, OfTwoSourcesWithOneBaseNameTheLaterWins)
{
    const QString wave = place.addWave(QStringLiteral("other.wav"), 8);
    ASSERT_TRUE(runTool(QStringLiteral("sox"), {wave, place.source() + QStringLiteral("/song.aiff")}).ok());
    ASSERT_TRUE(QFile::remove(wave));
    place.addWave(QStringLiteral("song.wav"), 9);
    EXPECT_EQ(numbers(run()), (Counts{2, 0, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/song.flac"}));
    EXPECT_EQ(samplesOf(place.runFolder() + QStringLiteral("/song.flac")), makeAudio(1, 9));
}

TEST_F(ConversionRunTest, TheRunEndsWhereItIsToldTo)
{
    for (const char* name : {"1.wav", "2.wav", "3.wav"})
        place.addWave(QLatin1String(name));
    int told = 0;
    ConversionRun conversion(place.source(), place.output(), QStringLiteral("FLAC"),
                             [&told](const QString&) { return ++told < 2; });
    EXPECT_EQ(numbers(conversion.convert(audioFilesIn(place.source()))), (Counts{1, 0, 0}));
    EXPECT_EQ(place.outputTree(), (QStringList{"Album", "Album/1.flac"}));
}

TEST_F(ConversionRunTest, GainTagsAreWrittenOnlyWhenSwitchedOn)
{
    const QString quiet = place.addWave(QStringLiteral("1.wav"), 3, 225);
    ASSERT_TRUE(
        runTool(QStringLiteral("sox"), {"-v", "0.25", quiet, place.source() + QStringLiteral("/2.wav")})
            .ok());
    EXPECT_EQ(numbers(run()), (Counts{2, 0, 0}));
    EXPECT_TRUE(
        gainTag(place.runFolder() + QStringLiteral("/1.flac"), QStringLiteral("REPLAYGAIN_TRACK_GAIN"))
            .isEmpty());

    encoderOptions.replayGainEnabled = true;
    EXPECT_EQ(numbers(run()), (Counts{2, 0, 0}));
    const QStringList sources{quiet, place.source() + QStringLiteral("/2.wav")};
    const QString album = QString::number(-18 - loudnessOf(sources));
    for (int i = 0; i < 2; ++i) {
        const QString file = place.output() + QStringLiteral("/Album - Copy/%1.flac").arg(i + 1);
        EXPECT_NEAR(decibels(gainTag(file, QStringLiteral("REPLAYGAIN_TRACK_GAIN"))),
                    -18 - loudnessOf({sources[i]}), 0.1);
        EXPECT_NEAR(decibels(gainTag(file, QStringLiteral("REPLAYGAIN_ALBUM_GAIN"))), album.toDouble(), 0.1);
        EXPECT_EQ(gainTag(file, QStringLiteral("REPLAYGAIN_ALBUM_PEAK")),
                  gainTag(place.output() + QStringLiteral("/Album - Copy/1.flac"),
                          QStringLiteral("REPLAYGAIN_TRACK_PEAK")));
    }
}
