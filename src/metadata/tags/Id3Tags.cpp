#include "metadata/tags/Id3Tags.h"

#include "metadata/tags/TagData.h"
#include "metadata/tags/TagValues.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/textidentificationframe.h>

#include <memory>

namespace {

void setCountedFrame(TagLib::ID3v2::Tag* tag, const char* frameId, int number, int total)
{
    if (number <= 0)
        return;
    QString text = QString::number(number);
    if (total > 0)
        text += QLatin1Char('/') + QString::number(total);
    setId3TextFrame(tag, frameId, text);
}

bool setCoverFrame(TagLib::ID3v2::Tag* tag, const QPixmap& cover)
{
    const TagLib::ByteVector jpeg = coverToJpeg(cover);
    if (jpeg.isEmpty())
        return false;
    tag->removeFrames("APIC");
    auto frame = std::make_unique<TagLib::ID3v2::AttachedPictureFrame>();
    frame->setTextEncoding(TagLib::String::UTF8);
    frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
    frame->setMimeType(coverMimeType);
    frame->setDescription(coverDescription);
    frame->setPicture(jpeg);
    tag->addFrame(frame.release());
    return true;
}

} // namespace

void setId3TextFrame(TagLib::ID3v2::Tag* tag, const char* frameId, const QString& text)
{
    tag->removeFrames(frameId);
    if (text.isEmpty())
        return;
    auto frame = std::make_unique<TagLib::ID3v2::TextIdentificationFrame>(frameId, TagLib::String::UTF8);
    frame->setText(tagText(text));
    tag->addFrame(frame.release());
}

bool fillId3v2Tag(TagLib::ID3v2::Tag* tag, const TagData& tags)
{
    setId3TextFrame(tag, "TIT2", tags.title);
    setId3TextFrame(tag, "TPE1", tags.artist);
    setId3TextFrame(tag, "TALB", tags.album);
    setId3TextFrame(tag, "TDRC", yearText(tags));
    setId3TextFrame(tag, "TPUB", tags.label);
    setCountedFrame(tag, "TRCK", tags.trackNumber, tags.trackTotal);
    setCountedFrame(tag, "TPOS", tags.discNumber, tags.discTotal);
    return tags.cover.isNull() || setCoverFrame(tag, tags.cover);
}
