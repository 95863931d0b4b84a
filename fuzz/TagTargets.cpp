#include "fuzz/TagTargets.h"

#include "base/FilePath.h"
#include "fuzz/Promise.h"
#include "fuzz/ScratchFile.h"
#include "metadata/http/HttpAddress.h"
#include "metadata/tags/ReplayGain.h"
#include "metadata/tags/TagValues.h"
#include "metadata/tags/TagWriter.h"

#include <QGuiApplication>
#include <taglib/tbytevector.h>

using fuzz::require;

namespace {

// Pictures are drawn with the program's own means, off screen.
void beApplication()
{
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static const bool offScreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(count, arguments);
    (void)offScreen;
}

TagData someTags()
{
    TagData tags;
    tags.title = QStringLiteral("Title");
    tags.artist = QStringLiteral("Künstler");
    tags.album = QStringLiteral("アルバム");
    tags.year = QStringLiteral("1998-03-01");
    tags.trackNumber = 3;
    tags.trackTotal = 12;
    tags.discNumber = 1;
    tags.discTotal = 2;
    tags.cover = QPixmap(8, 8);
    tags.cover.fill(Qt::red);
    return tags;
}

} // namespace

void fuzz::tags(const char* extension, const char* bytes, size_t size)
{
    beApplication();
    static const ScratchFile file(extension);
    static const TagData values = someTags();
    file.write(QByteArray(bytes, static_cast<qsizetype>(size)));
    const QString path = fromPath(file.path);
    if (writeTags(path, values))
        require(writeTags(path, values), "what was tagged can be tagged again");
    (void)writeReplayGain(path, -6.5, 0.9, -7.0, 0.95);
}

void fuzz::cover(const char* bytes, size_t size)
{
    beApplication();
    QPixmap picture;
    if (!picture.loadFromData(reinterpret_cast<const uchar*>(bytes), static_cast<unsigned>(size)))
        return;
    const auto jpeg = coverToJpeg(picture);
    require(jpeg.isEmpty() || jpeg.startsWith("\xFF\xD8"), "what is embedded is a JPEG or nothing");
}

void fuzz::redirect(const char* bytes, size_t size)
{
    const QByteArray text(bytes, static_cast<qsizetype>(size));
    const qsizetype end = text.indexOf('\n');
    const QByteArray from = "https://a.test/" + text.left(end < 0 ? 0 : end);
    const QByteArray next = followedAddress(from, text.mid(end + 1));
    require(next.isEmpty() || next.startsWith("http://") || next.startsWith("https://"),
            "a redirect leads to http or https");
    for (const char byte : next)
        require(static_cast<unsigned char>(byte) > ' ' && byte != 0x7F,
                "an address cannot break a request's line");
}
