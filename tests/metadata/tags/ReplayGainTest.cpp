#include "metadata/tags/ReplayGain.h"

#include "metadata/tags/TaggedFile.h"
#include "support/FileSizeLimit.h"
#include "support/Tool.h"

#include <QFile>

#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

QMap<QString, QString> gainsOf(const QString& path)
{
    QMap<QString, QString> gains = probedTags(path);
    for (auto it = gains.begin(); it != gains.end();)
        it = it.key().startsWith("replaygain_") ? std::next(it) : gains.erase(it);
    return gains;
}

const QMap<QString, QString> someGains{{"replaygain_track_gain", "-6.50 dB"},
                                       {"replaygain_track_peak", "0.988553"},
                                       {"replaygain_album_gain", "+2.25 dB"},
                                       {"replaygain_album_peak", "1.000000"}};

bool writeSomeGains(const QString& path)
{
    return writeReplayGain(path, -6.5, 0.9885531, 2.25, 1.0);
}

QList<QByteArray> payloads(const QList<Id3Frame>& frames, bool gains)
{
    QList<QByteArray> found;
    for (const Id3Frame& frame : frames) {
        if (frame.payload.contains("REPLAYGAIN") == gains)
            found.append(frame.id + frame.payload);
    }
    std::sort(found.begin(), found.end());
    return found;
}

QList<QByteArray> someGainFrames()
{
    const auto frame = [](const char* key, const char* value) {
        return QByteArray("TXXX\x03") + key + '\0' + value; // encoding 3 is UTF-8
    };
    return {frame("REPLAYGAIN_ALBUM_GAIN", "+2.25 dB"), frame("REPLAYGAIN_ALBUM_PEAK", "1.000000"),
            frame("REPLAYGAIN_TRACK_GAIN", "-6.50 dB"), frame("REPLAYGAIN_TRACK_PEAK", "0.988553")};
}

double meanSquareOf(double loudness)
{
    return std::pow(10.0, (loudness + 0.691) / 10.0);
}

} // namespace

class ReplayGainKinds : public TaggedFileTest, public ::testing::WithParamInterface<const char*> {
protected:
    const QString path = makeAudio(GetParam());
};

TEST_P(ReplayGainKinds, EarlierTagsCoverAndAudioStay)
{
    ASSERT_TRUE(writeTags(path, fullTags()));
    QMap<QString, QString> expected = probedTags(path);
    const QByteArray audio = audioDigest(path);
    ASSERT_EQ(expected["title"], fullTags().title);
    ASSERT_TRUE(writeSomeGains(path));
    // Of a WAVE file with both kinds of tags, older versions of that program show
    // the older one alone.
    if (!path.endsWith(".wav") || !gainsOf(path).isEmpty())
        expected.insert(someGains);
    EXPECT_EQ(probedTags(path), expected);
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
    EXPECT_EQ(audioDigest(path), audio);
}

TEST_P(ReplayGainKinds, AFileWithoutTagsGetsTheGainsAlone)
{
    const QMap<QString, QString> before = probedTags(path);
    const QByteArray audio = audioDigest(path);
    ASSERT_TRUE(writeSomeGains(path));
    QMap<QString, QString> expected = before;
    expected.insert(someGains);
    EXPECT_EQ(probedTags(path), expected);
    EXPECT_EQ(audioDigest(path), audio);
    EXPECT_TRUE(runTool("sox", {path, "-n", "stat"}).ok());
}

TEST_P(ReplayGainKinds, NoAlbumGainLeavesTheAlbumKeysAsTheyWere)
{
    ASSERT_TRUE(writeReplayGain(path, 3, 0.25, none, 0));
    EXPECT_EQ(gainsOf(path), (QMap<QString, QString>{{"replaygain_track_gain", "+3.00 dB"},
                                                     {"replaygain_track_peak", "0.250000"}}));
    ASSERT_TRUE(writeSomeGains(path));
    EXPECT_EQ(gainsOf(path), someGains);
    ASSERT_TRUE(writeReplayGain(path, 3, 0.25, none, 0));
    EXPECT_EQ(gainsOf(path), (QMap<QString, QString>{{"replaygain_track_gain", "+3.00 dB"},
                                                     {"replaygain_track_peak", "0.250000"},
                                                     {"replaygain_album_gain", "+2.25 dB"},
                                                     {"replaygain_album_peak", "1.000000"}}));
}

TEST_P(ReplayGainKinds, ValuesHaveASignTwoDecimalsAndSix)
{
    ASSERT_TRUE(writeReplayGain(path, 0.0, 1.0, 52.0, 1.0 / 3));
    EXPECT_EQ(gainsOf(path), (QMap<QString, QString>{{"replaygain_track_gain", "+0.00 dB"},
                                                     {"replaygain_track_peak", "1.000000"},
                                                     {"replaygain_album_gain", "+52.00 dB"},
                                                     {"replaygain_album_peak", "0.333333"}}));
}

TEST_P(ReplayGainKinds, AFullDiskLeavesTheAudioWhole)
{
    const QByteArray audio = audioDigest(path);
    {
        const FileSizeLimit full(static_cast<quint64>(QFile(path).size()));
        writeSomeGains(path);
    }
    EXPECT_EQ(audioDigest(path), audio);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ReplayGainKinds, ::testing::Values("a.mp3", "b.flac", "Größe.wav", "d.MP3"));

class ReplayGainTest : public TaggedFileTest {};

TEST_F(ReplayGainTest, EveryMp3FrameAndTheOldTagStayAsTheyWere)
{
    const QString path = makeAudio("track.mp3");
    for (const char* year : {"1997-05-21", "abcd", "T. 5", ""}) {
        TagData tags = fullTags();
        tags.year = QString::fromUtf8(year);
        ASSERT_TRUE(writeTags(path, tags));
        const QByteArray before = readAll(path);
        ASSERT_TRUE(writeSomeGains(path));
        const QByteArray after = readAll(path);
        EXPECT_EQ(payloads(id3Frames(after), false), payloads(id3Frames(before), false)) << year;
        EXPECT_EQ(payloads(id3Frames(after), true), someGainFrames()) << year;
        ASSERT_TRUE(before.right(128).startsWith("TAG"));
        EXPECT_EQ(after.right(128), before.right(128)) << year;
    }
}

TEST_F(ReplayGainTest, AnMp3WithoutTheOldTagGetsNone)
{
    const QString path = makeAudio("track.mp3");
    ASSERT_TRUE(writeSomeGains(path));
    EXPECT_FALSE(readAll(path).right(128).startsWith("TAG"));
}

TEST_F(ReplayGainTest, BothKindsOfWaveTagsStayAsTheyWere)
{
    const QString path = makeAudio("track.wav");
    for (const char* year : {"1997-05-21", "abcd"}) {
        TagData tags = fullTags();
        tags.year = QString::fromUtf8(year);
        ASSERT_TRUE(writeTags(path, tags));
        const auto before = waveChunks(readAll(path));
        ASSERT_EQ(infoValues(before["LIST"])["IPRT"], "3");
        ASSERT_TRUE(writeSomeGains(path));
        const auto after = waveChunks(readAll(path));
        EXPECT_EQ(payloads(id3Frames(after["ID3 "]), false), payloads(id3Frames(before["ID3 "]), false))
            << year;
        EXPECT_EQ(payloads(id3Frames(after["ID3 "]), true), someGainFrames()) << year;
        EXPECT_EQ(infoValues(after["LIST"]), infoValues(before["LIST"])) << year;
        EXPECT_EQ(after["DATA"], before["DATA"]);
        EXPECT_EQ(after.keys(), before.keys());
    }
}

TEST_F(ReplayGainTest, FlacCommentsAndPicturesStayAsTheyWere)
{
    const QString path = makeAudio("track.flac");
    ASSERT_TRUE(writeTags(path, fullTags()));
    const auto comments = [&] {
        QList<QByteArray> lines = runTool("metaflac", {"--export-tags-to=-", path}).output.split('\n');
        std::sort(lines.begin(), lines.end());
        return lines;
    };
    const auto picture = [&] { return runTool("metaflac", {"--export-picture-to=-", path}).output; };
    QList<QByteArray> expected = comments();
    const QByteArray cover = picture();
    ASSERT_TRUE(cover.startsWith("\xFF\xD8"));
    ASSERT_TRUE(writeSomeGains(path));
    expected << "REPLAYGAIN_TRACK_GAIN=-6.50 dB"
             << "REPLAYGAIN_TRACK_PEAK=0.988553"
             << "REPLAYGAIN_ALBUM_GAIN=+2.25 dB"
             << "REPLAYGAIN_ALBUM_PEAK=1.000000";
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(comments(), expected);
    EXPECT_EQ(picture(), cover);
    EXPECT_TRUE(runTool("flac", {"-s", "-t", path}).ok());
}

// Only newer versions of TagLib know a place for the keys there.
TEST_F(ReplayGainTest, Mpeg4GetsTheGainsWhereTheLibraryHasAPlaceAndKeepsTheRest)
{
    const QString path = makeAudio("track.m4a");
    ASSERT_TRUE(writeTags(path, fullTags()));
    QMap<QString, QString> expected = probedTags(path);
    const QByteArray audio = audioDigest(path);
    EXPECT_TRUE(writeSomeGains(path));
    TagLib::PropertyMap keys;
    for (const QString& key : someGains.keys())
        keys.replace(key.toUpper().toStdString(), TagLib::String("0"));
    TagLib::FileRef other(makeAudio("other.m4a").toUtf8().constData());
    ASSERT_TRUE(other.file());
    if (other.file()->setProperties(keys).isEmpty())
        expected.insert(someGains);
    EXPECT_EQ(probedTags(path), expected);
    EXPECT_EQ(probedPictures(path), QStringList{"mjpeg 40x30"});
    EXPECT_EQ(audioDigest(path), audio);
}

TEST_F(ReplayGainTest, AnAiffFileGetsAnId3Tag)
{
    const QString path = makeAudio("track.aiff");
    const QByteArray audio = audioDigest(path);
    ASSERT_TRUE(writeSomeGains(path));
    EXPECT_EQ(gainsOf(path), someGains);
    EXPECT_EQ(audioDigest(path), audio);
}

TEST_F(ReplayGainTest, WhatIsNoAudioFileIsRefused)
{
    QFile text(file("text.flac"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no audio");
    text.close();
    EXPECT_FALSE(writeSomeGains(text.fileName()));
    EXPECT_EQ(readAll(text.fileName()), "no audio");
    EXPECT_FALSE(writeSomeGains(file("missing.mp3")));
    EXPECT_FALSE(QFile::exists(file("missing.mp3")));
    EXPECT_FALSE(writeSomeGains(folder.path()));
    EXPECT_FALSE(writeSomeGains(QString()));
}

TEST_F(ReplayGainTest, AnAlbumIsGatedAsOneProgramme)
{
    // A loud and a quiet track. By itself the quiet one measures -40; on the
    // album it lies under the relative gate: about -23 for the mean, less 10.
    const QString loud = makeAudio("loud.flac");
    const QString quiet = makeAudio("quiet.mp3");
    const QList<double> loudBlocks(10, meanSquareOf(-20));
    const QList<double> quietBlocks(10, meanSquareOf(-40));
    writeAlbumReplayGain(
        {{loud, 2.0, 0.5, loudBlocks}, {file("missing.flac"), 0, 0.1, {}}, {quiet, 22.0, 0.75, quietBlocks}});
    EXPECT_EQ(gainsOf(loud), (QMap<QString, QString>{{"replaygain_track_gain", "+2.00 dB"},
                                                     {"replaygain_track_peak", "0.500000"},
                                                     {"replaygain_album_gain", "+2.00 dB"},
                                                     {"replaygain_album_peak", "0.750000"}}));
    EXPECT_EQ(gainsOf(quiet), (QMap<QString, QString>{{"replaygain_track_gain", "+22.00 dB"},
                                                      {"replaygain_track_peak", "0.750000"},
                                                      {"replaygain_album_gain", "+2.00 dB"},
                                                      {"replaygain_album_peak", "0.750000"}}));
    writeAlbumReplayGain({});
}

TEST_F(ReplayGainTest, ASilentAlbumGetsFiftyTwoDecibels)
{
    const QString path = makeAudio("silent.flac");
    writeAlbumReplayGain({{path, 52.0, 0.0, {0.0, 0.0}}});
    EXPECT_EQ(gainsOf(path)["replaygain_album_gain"], "+52.00 dB");
    EXPECT_EQ(gainsOf(path)["replaygain_album_peak"], "0.000000");
}
