// One file of each of the twelve endings in a folder, through the dialog to all
// three formats.

#include "convert/ConvertDialogStage.h"

#include "codecs/DecoderFiles.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <QDir>
#include <QFile>

namespace {

constexpr int channels = 2;
constexpr int frameCount = 22050;
constexpr double seconds = frameCount / 44100.0;
// Eight one-bit samples in a byte, in whole blocks of 4096 bytes.
constexpr int oneBitBytes = 43 * 4096;
constexpr double oneBitSeconds = oneBitBytes * 8 / 2822400.0;

const QStringList endings{"aac", "aif", "aiff", "dff",  "dsf", "flac",
                          "m4a", "mp3", "ogg",  "opus", "wav", "wv"};

bool isOneBit(const QString& ending)
{
    return ending == QStringLiteral("dsf") || ending == QStringLiteral("dff");
}

bool keepsEverySample(const QString& ending)
{
    return QStringList{"aif", "aiff", "flac", "wav", "wv"}.contains(ending);
}

struct Probed {
    int channels = 0;
    double seconds = 0;
};

/// The length as decoded, which no header can embellish.
Probed probed(const QString& path)
{
    const ToolResult stream =
        runTool(QStringLiteral("ffprobe"), {"-v", "error", "-select_streams", "a:0", "-show_entries",
                                            "stream=channels,sample_rate", "-of", "csv=p=0", path});
    // The order is the program's own: sample_rate, channels.
    const QList<QByteArray> facts = stream.output.trimmed().split(',');
    const ToolResult decoded =
        runTool(QStringLiteral("ffmpeg"), {"-v", "error", "-xerror", "-i", path, "-f", "s16le", "-"});
    if (!stream.ok() || !decoded.ok() || facts.size() != 2) {
        ADD_FAILURE() << path.toStdString() << ": " << stream.errors.toStdString()
                      << decoded.errors.toStdString();
        return {};
    }
    const int count = facts[1].toInt();
    return {count, static_cast<double>(decoded.output.size()) / (2.0 * count * facts[0].toInt())};
}

class ConvertEveryKind : public ConvertDialogStage {
protected:
    void SetUp() override
    {
        const QString workshop = place.top() + QStringLiteral("/workshop");
        ASSERT_TRUE(QDir().mkpath(workshop));
        for (const QString& ending : endings) {
            const QString made = workshop + QStringLiteral("/of.") + ending;
            ASSERT_NO_FATAL_FAILURE(decoderfiles::make(made, isOneBit(ending) ? oneBitBytes : frameCount));
            ASSERT_TRUE(
                QFile::rename(made, place.source() + QStringLiteral("/from ") + ending + u'.' + ending));
        }
    }

    /// What the dialog makes of the folder, and each file by an independent judge.
    void convertAll(int format, const QString& target)
    {
        view().format()->setCurrentIndex(format);
        EXPECT_EQ(convert(), text("完了: 12件中 11件成功、1件処理不可(同一形式)",
                                  "Done: 11 of 12 files converted, 1 skipped (same format)"));
        QStringList expected{"Album"};
        for (const QString& ending : endings) {
            if (ending != target)
                expected << QStringLiteral("Album/from ") + ending + u'.' + target;
        }
        ASSERT_EQ(place.outputTree(), expected);
        for (const QString& path : expected.mid(1)) {
            const Probed found = probed(place.output() + u'/' + path);
            EXPECT_EQ(found.channels, channels) << path.toStdString();
            const QString ending = path.section(u' ', 1).section(u'.', 0, 0);
            // Lossy encoders add a few frames of up to 1152 samples, and not all of them say so.
            const bool exact = target != QStringLiteral("mp3") && keepsEverySample(ending);
            EXPECT_NEAR(found.seconds, isOneBit(ending) ? oneBitSeconds : seconds,
                        exact ? 1e-9 : 4 * 1152 / 44100.0)
                << path.toStdString();
        }
    }

    void expectSamplesOfTheSource(const QString& target)
    {
        const QList<qint16> samples = audiomaker::to16(decoderfiles::audio(frameCount, channels));
        const QByteArray expected(reinterpret_cast<const char*>(samples.constData()),
                                  samples.size() * static_cast<qsizetype>(sizeof(qint16)));
        for (const QString& ending : endings) {
            if (ending == target || !keepsEverySample(ending))
                continue;
            EXPECT_EQ(samplesOf(place.runFolder() + QStringLiteral("/from ") + ending + u'.' + target),
                      expected)
                << ending.toStdString();
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Both, ConvertEveryKind, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(ConvertEveryKind, ToWav)
{
    ASSERT_NO_FATAL_FAILURE(convertAll(0, QStringLiteral("wav")));
    expectSamplesOfTheSource(QStringLiteral("wav"));
}

TEST_P(ConvertEveryKind, ToFlac)
{
    ASSERT_NO_FATAL_FAILURE(convertAll(1, QStringLiteral("flac")));
    expectSamplesOfTheSource(QStringLiteral("flac"));
    for (const QString& path : place.outputTree().mid(1))
        EXPECT_TRUE(runTool(QStringLiteral("flac"), {"-t", "-s", place.output() + u'/' + path}).ok())
            << path.toStdString();
}

TEST_P(ConvertEveryKind, ToMp3)
{
    ASSERT_NO_FATAL_FAILURE(convertAll(2, QStringLiteral("mp3")));
}
