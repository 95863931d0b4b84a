#include "metadata/tags/TagWriter.h"

#include "base/FilePath.h"
#include "metadata/tags/FlacCover.h"
#include "metadata/tags/Id3Tags.h"
#include "metadata/tags/TagStream.h"
#include "metadata/tags/TagValues.h"

#include <QDebug>
#include <QFileInfo>

#include <taglib/flacfile.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/infotag.h>
#include <taglib/mp4coverart.h>
#include <taglib/mp4file.h>
#include <taglib/mp4tag.h>
#include <taglib/mpegfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

#include <memory>
#include <type_traits>

thread_local QString lastTagError;

namespace {

bool fail(const QString& words)
{
    lastTagError = words;
    return false;
}

bool failToSave(const QString& path)
{
    return fail(QStringLiteral("Failed to save tags: ") + path);
}

/// One kind of TagLib file on a stream of ours.
template<typename File>
class TaggedFile {
public:
    explicit TaggedFile(const QString& path) : stream(toPath(path).c_str()), file(open(&stream)) {}

    File* operator->() { return file.get(); }
    File& operator*() { return *file; }

private:
    static std::unique_ptr<File> open(TagLib::IOStream* stream)
    {
        constexpr auto style = TagLib::AudioProperties::Average;
        if constexpr (std::is_constructible_v<File, TagLib::IOStream*, bool, decltype(style)>)
            return std::make_unique<File>(stream, true, style);
        else
            return std::make_unique<File>(stream, TagLib::ID3v2::FrameFactory::instance(), true, style);
    }

    TagStream stream;
    std::unique_ptr<File> file;
};

// What TagLib's save without arguments does, save for its order: that fills the
// gaps of the ID3v2 tag from the ID3v1 tag last, so that a title just emptied
// comes back and a year that is no number is dropped, even in a file that had
// neither tag. Here the gaps are filled ahead of our values.
bool writeTagsMp3(const QString& path, const TagData& tags, bool& coverTaken)
{
    using TagLib::MPEG::File;

    TaggedFile<File> file(path);
    if (!file->isValid())
        return fail(QStringLiteral("Cannot open MP3 file: ") + path);
    TagLib::ID3v2::Tag* tag = file->ID3v2Tag(true);
    TagLib::ID3v1::Tag* oldTag = file->ID3v1Tag(true);
    TagLib::Tag::duplicate(oldTag, tag, false);
    coverTaken = fillId3v2Tag(tag, tags);
    TagLib::Tag::duplicate(tag, oldTag, true);
    return file->save(File::AllTags, File::StripOthers, TagLib::ID3v2::v4, File::DoNotDuplicate)
           || failToSave(path);
}

void addCount(TagLib::Ogg::XiphComment& comment, const char* key, int count)
{
    if (count > 0)
        comment.addField(key, TagLib::String::number(count), true);
}

bool writeTagsFlac(const QString& path, const TagData& tags, bool& coverTaken)
{
    TaggedFile<TagLib::FLAC::File> file(path);
    if (!file->isValid())
        return fail(QStringLiteral("Cannot open FLAC file: ") + path);
    TagLib::Ogg::XiphComment* comment = file->xiphComment(true);
    if (!comment)
        return fail(QStringLiteral("Cannot get XiphComment"));

    setCommonValues(*comment, tags);
    comment->setTrack(static_cast<unsigned int>(tags.trackNumber));
    if (!tags.label.isEmpty())
        comment->addField("ORGANIZATION", tagText(tags.label), true);
    addCount(*comment, "TRACKTOTAL", tags.trackTotal);
    addCount(*comment, "DISCNUMBER", tags.discNumber);
    if (tags.discNumber > 0)
        addCount(*comment, "DISCTOTAL", tags.discTotal);
    if (!tags.cover.isNull()) {
        const TagLib::ByteVector jpeg = coverToJpeg(tags.cover);
        coverTaken = !jpeg.isEmpty() && addFrontCover(*file, jpeg);
    }
    return file->save() || failToSave(path);
}

bool writeTagsM4a(const QString& path, const TagData& tags, bool& coverTaken)
{
    TaggedFile<TagLib::MP4::File> file(path);
    TagLib::MP4::Tag* tag = file->isValid() ? file->tag() : nullptr;
    if (!tag)
        return fail(QStringLiteral("Cannot open M4A file: ") + path);

    setCommonValues(*tag, tags);
    if (tags.trackNumber > 0)
        tag->setItem("trkn", TagLib::MP4::Item(tags.trackNumber, tags.trackTotal));
    if (tags.discNumber > 0)
        tag->setItem("disk", TagLib::MP4::Item(tags.discNumber, tags.discTotal));
    const TagLib::ByteVector jpeg = tags.cover.isNull() ? TagLib::ByteVector() : coverToJpeg(tags.cover);
    coverTaken = tags.cover.isNull() || !jpeg.isEmpty();
    if (!jpeg.isEmpty()) {
        TagLib::MP4::CoverArtList covers;
        covers.append(TagLib::MP4::CoverArt(TagLib::MP4::CoverArt::JPEG, jpeg));
        tag->setItem("covr", covers);
    }
    return file->save() || failToSave(path);
}

bool writeTagsWav(const QString& path, const TagData& tags, bool& coverTaken)
{
    TaggedFile<TagLib::RIFF::WAV::File> file(path);
    if (!file->isValid())
        return fail(QStringLiteral("Cannot open WAV file: ") + path);
    coverTaken = fillId3v2Tag(file->ID3v2Tag(), tags);
    if (TagLib::RIFF::Info::Tag* info = file->InfoTag()) {
        setCommonValues(*info, tags);
        info->setTrack(static_cast<unsigned int>(tags.trackNumber));
    }
    return file->save() || failToSave(path);
}

bool writeTagsBySuffix(const QString& path, const TagData& tags, bool& coverTaken)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("mp3"))
        return writeTagsMp3(path, tags, coverTaken);
    if (suffix == QLatin1String("wav"))
        return writeTagsWav(path, tags, coverTaken);
    if (suffix == QLatin1String("m4a"))
        return writeTagsM4a(path, tags, coverTaken);
    return writeTagsFlac(path, tags, coverTaken);
}

} // namespace

bool writeTags(const QString& path, const TagData& tags, bool* coverLeftOut)
{
    bool coverTaken = true;
    bool written = false;
    try {
        written = writeTagsBySuffix(path, tags, coverTaken);
    } catch (...) {
        failToSave(path);
    }
    if (!coverTaken)
        qWarning().noquote() << "[Tags] cover too large, left out of" << path;
    if (coverLeftOut)
        *coverLeftOut = !coverTaken;
    return written;
}
