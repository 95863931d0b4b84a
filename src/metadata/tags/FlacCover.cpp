#include "metadata/tags/FlacCover.h"

#include "metadata/tags/TagValues.h"

#include <taglib/flacfile.h>
#include <taglib/flacpicture.h>

#include <memory>

namespace {

constexpr unsigned int mostBlockBytes = 0xFFFFFF;

} // namespace

bool addFrontCover(TagLib::FLAC::File& file, const TagLib::ByteVector& jpeg)
{
    auto picture = std::make_unique<TagLib::FLAC::Picture>();
    picture->setType(TagLib::FLAC::Picture::FrontCover);
    picture->setMimeType(coverMimeType);
    picture->setDescription(coverDescription);
    picture->setData(jpeg);
    if (picture->render().size() > mostBlockBytes)
        return false;
    file.addPicture(picture.release());
    return true;
}
