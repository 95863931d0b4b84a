#include "metadata/tags/Id3Tags.h"

#include "metadata/tags/TagData.h"
#include "metadata/tags/TagValues.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/textidentificationframe.h>

#include <memory>

namespace {

/// Replaces all text frames of one id by a single one; an empty text only removes them.
void setTextFrame(TagLib::ID3v2::Tag* tag, const char* frameId, const QString& text)
{
    tag->removeFrames(frameId);
    if (text.isEmpty())
        return;
    auto frame = std::make_unique<TagLib::ID3v2::TextIdentificationFrame>(frameId, TagLib::String::UTF8);
    frame->setText(tagText(text));
    tag->addFrame(frame.release());
}

void setCountedFrame(TagLib::ID3v2::Tag* tag, const char* frameId, int number, int total)
{
    if (number <= 0)
        return;
    QString text = QString::number(number);
    if (total > 0)
        text += QLatin1Char('/') + QString::number(total);
    setTextFrame(tag, frameId, text);
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

bool fillId3v2Tag(TagLib::ID3v2::Tag* tag, const TagData& tags)
{
    setTextFrame(tag, "TIT2", tags.title);
    setTextFrame(tag, "TPE1", tags.artist);
    setTextFrame(tag, "TALB", tags.album);
    setTextFrame(tag, "TDRC", yearText(tags));
    setTextFrame(tag, "TPUB", tags.label);
    setCountedFrame(tag, "TRCK", tags.trackNumber, tags.trackTotal);
    setCountedFrame(tag, "TPOS", tags.discNumber, tags.discTotal);
    return tags.cover.isNull() || setCoverFrame(tag, tags.cover);
}
