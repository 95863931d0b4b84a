#include "metadata/tags/TagValues.h"

#include "metadata/lookup/ReleaseDate.h"
#include "metadata/tags/TagData.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>

#include <taglib/tag.h>
#include <taglib/tbytevector.h>
#include <taglib/tstring.h>

namespace {

constexpr int jpegQuality = 90;

} // namespace

TagLib::String tagText(const QString& text)
{
    return TagLib::String(text.toStdString(), TagLib::String::UTF8);
}

QString yearText(const TagData& tags)
{
    return yearOfDate(tags.year);
}

void setCommonValues(TagLib::Tag& target, const TagData& tags)
{
    target.setTitle(tagText(tags.title));
    target.setArtist(tagText(tags.artist));
    target.setAlbum(tagText(tags.album));
    target.setYear(yearText(tags).toUInt());
}

TagLib::ByteVector coverToJpeg(const QPixmap& cover)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "JPEG");
    writer.setQuality(jpegQuality);
    writer.write(cover.toImage());
    const QByteArray& bytes = buffer.data();
    return TagLib::ByteVector(bytes.constData(), static_cast<unsigned int>(bytes.size()));
}
