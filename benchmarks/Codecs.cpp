// Decodes to WAV and encodes from WAV in fresh processes, and sets what that costs
// against the tools of each kind over the same file.

#include "ChildRun.h"
#include "Measure.h"
#include "MusicImage.h"
#include "Options.h"
#include "codecs/Transcoder.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr char convertCommand[] = "run-convert";

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// The result line that a run of this program prints.
double workOf(const RunCost& cost)
{
    return cost.output.simplified().toDouble();
}

/// One kind of file: how a tool makes one of the WAV file IN, and the tools that turn
/// one, IN, back into a WAV file OUT.
struct Decoding {
    const char* ending;
    const char* maker;
    QList<const char*> tools;
};

const QList<Decoding>& decodings()
{
    static const QList<Decoding> list{
        {"wav", "cp IN OUT", {"sox -D IN OUT"}},
        {"aiff", "sox -D IN OUT", {"sox -D IN OUT"}},
        {"flac", "flac -s -5 -o OUT IN", {"flac -d -s -f -o OUT IN"}},
        {"ogg", "oggenc -Q -q 6 -o OUT IN", {"oggdec -Q -o OUT IN"}},
        {"opus", "opusenc --quiet IN OUT", {"opusdec --quiet IN OUT"}},
        {"wv", "wavpack -q IN -o OUT", {"wvunpack -q -y IN -o OUT"}},
        {"mp3",
         "lame --quiet -b 320 -q 5 IN OUT",
         {"lame --quiet --decode IN OUT", "ffmpeg -v error -y -i IN -c:a pcm_s24le OUT"}},
        {"aac", "ffmpeg -v error -i IN -b:a 192k OUT", {"ffmpeg -v error -y -i IN -c:a pcm_s24le OUT"}},
        {"m4a", "ffmpeg -v error -i IN -b:a 192k OUT", {"ffmpeg -v error -y -i IN -c:a pcm_s24le OUT"}},
        {"alac.m4a", "ffmpeg -v error -i IN -c:a alac OUT", {"ffmpeg -v error -y -i IN -c:a pcm_s16le OUT"}},
    };
    return list;
}

struct Encoding {
    EncoderId id;
    const char* name;
    const char* ending;
    const char* tool;
};

constexpr Encoding encodings[] = {
    {WavEncoderId, "WAV", "wav", "sox -D IN OUT"},
    {AiffEncoderId, "AIFF", "aiff", "sox -D IN OUT"},
    {FlacEncoderId, "FLAC", "flac", "flac -s -f -5 -o OUT IN"},
    {Mp3EncoderId, "MP3", "mp3", "lame --quiet --cbr -b 320 -q 2 IN OUT"},
    {AacEncoderId, "AAC", "m4a", "ffmpeg -v error -y -i IN -c:a aac -b:a 192k OUT"},
    {AlacEncoderId, "ALAC", "m4a", "ffmpeg -v error -y -i IN -c:a alac OUT"},
};

struct Plan {
    int minutes = 4;
    int tracks = 12;
    int pairs = 5;
    QStringList rows;

    bool has(const char* row) const { return rows.isEmpty() || rows.contains(QLatin1String(row)); }
};

class Benchmark {
public:
    Benchmark(const Plan& chosen, const QString& workFolder) : plan(chosen), folder(workFolder) {}

    void run()
    {
        printHead();
        const MusicImage music = makeMusicImage(folder + QStringLiteral("/image"), plan.minutes, plan.tracks);
        if (plan.has("convert"))
            albumRow(writeTrackWaves(music, folder));
        MusicImage whole = music;
        whole.tracks = 1;
        whole.trackSectors = music.trackSectors * music.tracks;
        wave = writeTrackWaves(whole, folder).first();
        if (plan.has("decode"))
            decodeRows();
        if (plan.has("encode"))
            encodeRows();
    }

private:
    QString output(const QString& name) const { return folder + QStringLiteral("/out.") + name; }

    static QStringList filled(const char* tool, const QString& in, const QString& out)
    {
        QStringList command = words(tool);
        std::replace(command.begin(), command.end(), QStringLiteral("IN"), in);
        std::replace(command.begin(), command.end(), QStringLiteral("OUT"), out);
        return command;
    }

    static QStringList convert(EncoderId id, const QString& in, const QString& out)
    {
        return {QCoreApplication::applicationFilePath(), QLatin1String(convertCommand), QString::number(id),
                in, out};
    }

    void row(const QString& what, const QString& tool, const QStringList& ours,
             const QList<QStringList>& other, const Bound& bound)
    {
        const auto costs = runInTurn(plan.pairs, {[&] { return runChild(ours); },
                                                  [&] {
                                                      RunCost sum;
                                                      for (const QStringList& command : other)
                                                          sum += runChild(command);
                                                      return sum;
                                                  }});
        printRow({what, tool, QStringLiteral("s")}, processorOf(costs[0]), processorOf(costs[1]), bound);
        printNote(QStringLiteral("of that the work, without the start"), QStringLiteral("s"),
                  median(figures(costs[0], workOf)));
    }

    void decodeRows()
    {
        for (const Decoding& kind : decodings()) {
            const QString source = folder + QStringLiteral("/in.") + QLatin1String(kind.ending);
            runChild(filled(kind.maker, wave, source));
            const QString target = output(QStringLiteral("wav"));
            for (const char* tool : kind.tools) {
                const QString what = QStringLiteral("decode ") + QLatin1String(kind.ending);
                row(what, words(tool).first(), convert(WavEncoderId, source, target),
                    {filled(tool, source, target)}, bounds::sameDecoder);
            }
            QFile::remove(source);
        }
    }

    void encodeRows()
    {
        for (const Encoding& kind : encodings) {
            const QString target = output(QLatin1String(kind.ending));
            row(QStringLiteral("encode %1").arg(QLatin1String(kind.name)), words(kind.tool).first(),
                convert(kind.id, wave, target), {filled(kind.tool, wave, target)}, bounds::sameEncoder);
            QFile::remove(target);
        }
    }

    void albumRow(const QStringList& tracks)
    {
        QStringList ours{QCoreApplication::applicationFilePath(), QLatin1String(convertCommand),
                         QString::number(FlacEncoderId)};
        QList<QStringList> other;
        for (const QString& track : tracks) {
            ours += {track, track + QStringLiteral(".flac")};
            other.append(filled("flac -s -f -5 -o OUT IN", track, track + QStringLiteral(".flac")));
        }
        row(QStringLiteral("convert %1 tracks to FLAC").arg(tracks.size()), QStringLiteral("flac -5"), ours,
            other, bounds::sameEncoder);
        for (const QString& track : tracks) {
            QFile::remove(track);
            QFile::remove(track + QStringLiteral(".flac"));
        }
    }

    Plan plan;
    QString folder;
    QString wave;
};

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    Options options;
    options.number("minutes", "Minutes of audio.", plan.minutes);
    options.number("pairs", "Paired runs of each row.", plan.pairs);
    options.rows("decode encode convert", plan.rows);
    options.read(application);
    return plan;
}

int measure(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const Plan plan = readPlan(application);
    const QTemporaryDir folder;
    return runToEnd([&] { Benchmark(plan, folder.path()).run(); });
}

/// What a fresh process does for one run: an encoder's number, then pairs of names.
int convertFiles(int argc, char** argv)
{
    const double before = ownProcessorSeconds();
    const auto id = static_cast<EncoderId>(std::atoi(argv[2]));
    for (int i = 3; i + 1 < argc; i += 2) {
        if (!convertFile(argv[i], argv[i + 1], id, 1, nullptr))
            return 1;
    }
    std::printf("%.6f\n", ownProcessorSeconds() - before);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 4 && QByteArray(argv[1]) == convertCommand)
        return convertFiles(argc, argv);
    return measure(argc, argv);
}
