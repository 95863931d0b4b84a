#include "endurance/WholeFile.h"

#include "base/ByteOrder.h"
#include "convert/FolderOfAudio.h"
#include "support/Tool.h"

#include <QCryptographicHash>

namespace {

QString faultOfFlac(const QString& path, const QByteArray& audio)
{
    // The sum of the samples stands in the file; that they agree is tested first.
    const ToolResult tested = runTool("flac", {"-t", "-s", path});
    if (!tested.ok())
        return QString::fromUtf8(tested.errors);
    const ToolResult sum = runTool("metaflac", {"--show-md5sum", path});
    const bool same =
        sum.output.trimmed() == QCryptographicHash::hash(audio, QCryptographicHash::Md5).toHex();
    return same ? QString() : QStringLiteral("other samples");
}

// Noise of a twentieth of the audio's height is far more than the encoder leaves, and
// far less than of audio from any other place.
QString faultOfMp3(const QString& path, const QByteArray& audio)
{
    const ToolResult decoded = runTool("lame", {"--quiet", "--decode", "-t", path, "-"});
    if (!decoded.ok() || decoded.output.size() != audio.size())
        return QStringLiteral("%1 bytes of %2").arg(decoded.output.size()).arg(audio.size());
    double power = 0;
    double noise = 0;
    for (qsizetype at = 0; at < audio.size(); at += 2) {
        const double sample = byteorder::readLittle<qint16>(audio.constData() + at);
        const double difference = sample - byteorder::readLittle<qint16>(decoded.output.constData() + at);
        power += sample * sample;
        noise += difference * difference;
    }
    return noise * 400 <= power ? QString() : QStringLiteral("noise of %1 of the power").arg(noise / power);
}

} // namespace

QString faultOf(const QString& path, const QByteArray& audio)
{
    if (path.endsWith(QLatin1String(".flac")))
        return faultOfFlac(path, audio);
    if (path.endsWith(QLatin1String(".mp3")))
        return faultOfMp3(path, audio);
    return samplesOf(path) == audio ? QString() : QStringLiteral("other samples");
}
