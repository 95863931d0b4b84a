#include "codecs/Mpeg4Timing.h"

#include "codecs/InputFile.h"

#include <algorithm>

namespace {

struct Box {
    std::uint32_t id = 0;
    std::uint64_t body = 0; ///< offset in the file
    std::uint64_t end = 0;
};

/// What is gathered of the file and of its one audio track.
struct Findings {
    std::uint64_t movieUnits = 0;
    std::uint64_t mediaUnits = 0;
    std::uint64_t mediaLength = 0;
    std::uint64_t edits = 0;
    std::uint64_t editStart = 0;
    std::uint64_t editLength = 0; ///< in units of the movie
    bool isAudio = false;
    bool isFragmented = false;
    int audioTracks = 0;
};

class BoxReader {
public:
    bool open(const std::filesystem::path& path) { return file.open(path); }

    std::optional<Findings> read()
    {
        walk(0, ~std::uint64_t{0}, 0);
        if (found.audioTracks != 1 || found.isFragmented)
            return std::nullopt;
        return found;
    }

private:
    std::optional<Box> next(std::uint64_t place, std::uint64_t end)
    {
        constexpr std::uint32_t longSize = 1;
        file.clear();
        if (place >= end || !file.seek(place))
            return std::nullopt;
        std::uint64_t size = file.readBig<std::uint32_t>();
        Box box;
        box.id = file.readBig<std::uint32_t>();
        if (size == longSize)
            size = file.readBig<std::uint64_t>();
        box.body = file.position();
        const std::uint64_t headerBytes = box.body - place;
        if (!file.good() || size < headerBytes || size > (std::uint64_t{1} << 62) - place)
            return std::nullopt;
        box.end = std::min(place + size, end);
        return box;
    }

    void walk(std::uint64_t place, std::uint64_t end, int depth)
    {
        constexpr int deepest = 8;
        while (depth < deepest && steps++ < mostSteps) {
            const auto box = next(place, end);
            if (!box)
                return;
            visit(*box, depth);
            place = box->end;
        }
    }

    void visit(const Box& box, int depth)
    {
        switch (box.id) {
        case chunkId("trak"):
            return readTrack(box, depth);
        case chunkId("moov"):
        case chunkId("mdia"):
        case chunkId("minf"):
        case chunkId("stbl"):
        case chunkId("edts"):
            return walk(box.body, box.end, depth + 1);
        case chunkId("moof"):
        case chunkId("mvex"):
            found.isFragmented = true;
            return;
        case chunkId("mvhd"):
            found.movieUnits = readUnits();
            return;
        case chunkId("mdhd"):
            found.mediaUnits = readUnits();
            return;
        case chunkId("hdlr"):
            file.skip(8);
            found.isAudio = file.readMagic("soun");
            return;
        case chunkId("elst"):
            return readEdits(box);
        case chunkId("stts"):
            return readSampleTimes(box);
        default:
            return;
        }
    }

    /// Keeps what a track says only if it is audio.
    void readTrack(const Box& box, int depth)
    {
        const Findings before = found;
        found.isAudio = false;
        walk(box.body, box.end, depth + 1);
        if (!found.isAudio)
            found = before;
        else
            ++found.audioTracks;
    }

    /// Whether the fields of this box take 64 bits.
    bool isLong() { return file.readBig<std::uint32_t>() >> 24 == 1; }

    std::uint64_t readUnits()
    {
        file.skip(isLong() ? 16 : 8); // when it was made and changed
        return file.readBig<std::uint32_t>();
    }

    void readEdits(const Box& box)
    {
        const bool wide = isLong();
        const std::uint64_t entryBytes = wide ? 20 : 12;
        const std::uint64_t stated = file.readBig<std::uint32_t>();
        const std::uint64_t count = std::min(stated, (box.end - box.body) / entryBytes);
        found.edits = 0;
        for (std::uint64_t i = 0; i < count && file.good(); ++i) {
            const std::uint64_t length = wide ? file.readBig<std::uint64_t>() : file.readBig<std::uint32_t>();
            const std::int64_t start = wide ? file.readBig<std::int64_t>() : file.readBig<std::int32_t>();
            file.readBig<std::uint32_t>(); // speed
            if (start < 0)
                continue; // a pause in front
            ++found.edits;
            found.editStart = static_cast<std::uint64_t>(start);
            found.editLength = length;
        }
    }

    void readSampleTimes(const Box& box)
    {
        constexpr std::uint64_t entryBytes = 8;
        file.readBig<std::uint32_t>(); // version
        const std::uint64_t stated = file.readBig<std::uint32_t>();
        const std::uint64_t count = std::min(stated, (box.end - box.body) / entryBytes);
        found.mediaLength = 0;
        for (std::uint64_t i = 0; i < count && file.good(); ++i) {
            const std::uint64_t samples = file.readBig<std::uint32_t>();
            found.mediaLength += samples * file.readBig<std::uint32_t>();
        }
    }

    static constexpr int mostSteps = 100000;

    InputFile file;
    Findings found;
    int steps = 0;
};

} // namespace

std::optional<Mpeg4Timing> readMpeg4Timing(const std::filesystem::path& path)
{
    constexpr std::uint64_t unbelievable = std::uint64_t{1} << 40;

    BoxReader reader;
    if (!reader.open(path))
        return std::nullopt;
    const auto found = reader.read();
    if (!found || found->edits != 1 || found->movieUnits == 0 || found->mediaUnits == 0)
        return std::nullopt;
    if (found->mediaLength > unbelievable || found->editLength > unbelievable
        || found->editStart >= found->mediaLength)
        return std::nullopt;
    Mpeg4Timing timing{found->mediaUnits, found->editStart, found->mediaLength - found->editStart};
    const double movieUnit = static_cast<double>(found->mediaUnits) / static_cast<double>(found->movieUnits);
    const double edited = static_cast<double>(found->editLength) * movieUnit;
    // A length of 0 stands for all that is there.
    if (found->editLength > 0 && edited + movieUnit < static_cast<double>(timing.length))
        timing.length = static_cast<std::uint64_t>(edited + 0.5);
    return timing;
}
