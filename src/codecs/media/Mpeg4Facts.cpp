#include "codecs/media/Mpeg4Facts.h"

#include "codecs/media/Mpeg4Boxes.h"

#include <algorithm>
#include <cmath>

namespace {

/// What is gathered of the file and of its first audio track.
struct Findings {
    std::uint64_t movieUnits = 0;
    std::uint64_t mediaUnits = 0;
    std::uint64_t mediaLength = 0;
    Mpeg4Edits edits;
    bool isAudio = false;
    bool isFragmented = false;
};

/// What asks the library for room in its index.
struct TrackTables {
    std::uint64_t samples = 0;
    std::uint64_t samplesAChunk = 0; ///< the most
    std::uint64_t chunks = 0;

    /// Audio without frames of its own gets an entry for so many of its samples at least.
    static constexpr std::uint64_t samplesAnEntry = 160;

    std::uint64_t entries() const { return std::max(samples, samplesAChunk * chunks / samplesAnEntry); }
};

bool isContainer(std::uint32_t id)
{
    constexpr quint32 containers[] = {chunkId("moov"), chunkId("mdia"), chunkId("minf"), chunkId("stbl"),
                                      chunkId("edts"), chunkId("dinf"), chunkId("udta"), chunkId("tref"),
                                      chunkId("traf"), chunkId("moof"), chunkId("mvex")};
    return std::find(std::begin(containers), std::end(containers), id) != std::end(containers);
}

class BoxReader {
public:
    bool open(const std::filesystem::path& path)
    {
        std::error_code failure;
        const auto size = std::filesystem::file_size(path, failure);
        fileBytes = failure ? largestMpeg4File : std::min<std::uint64_t>(size, largestMpeg4File);
        return file.open(path);
    }

    std::optional<Findings> read()
    {
        walk(0, fileBytes, 0);
        if (!audioSeen || found.isFragmented)
            return std::nullopt;
        return found;
    }

    bool isPlausible() const { return entries <= fileBytes && steps < mostSteps; }

private:
    void walk(std::uint64_t place, std::uint64_t end, int depth)
    {
        constexpr int deepest = 8;
        while (depth < deepest && steps < mostSteps) {
            ++steps;
            const auto box = boxAt(file, place, end);
            if (!box)
                return;
            visit(*box, depth);
            place = box->end;
        }
    }

    void visit(const Mpeg4Box& box, int depth)
    {
        found.isFragmented = found.isFragmented || box.id == chunkId("moof") || box.id == chunkId("mvex");
        if (box.id == chunkId("trak"))
            readTrack(box, depth);
        else if (isContainer(box.id))
            walk(box.body, box.end, depth + 1);
        else
            readLeaf(box);
    }

    void readLeaf(const Mpeg4Box& box)
    {
        switch (box.id) {
        case chunkId("mvhd"):
            found.movieUnits = readUnitsASecond(file);
            break;
        case chunkId("mdhd"):
            found.mediaUnits = readUnitsASecond(file);
            break;
        case chunkId("hdlr"):
            file.skip(8);
            found.isAudio = file.readMagic("soun") || found.isAudio;
            break;
        case chunkId("elst"):
            found.edits = readEdits(file, box);
            break;
        case chunkId("stts"):
            found.mediaLength = readMediaLength(file, box);
            break;
        case chunkId("stsz"):
        case chunkId("stz2"):
            tables.samples += readSampleCount(file);
            break;
        case chunkId("stco"):
        case chunkId("co64"):
            tables.chunks += readChunkCount(file, box);
            break;
        case chunkId("stsc"):
            tables.samplesAChunk = std::max(tables.samplesAChunk, readLargestChunk(file, box));
            break;
        case chunkId("trun"):
            demand(readFragmentSamples(file));
            break;
        }
    }

    /// Keeps what a track says only if it is the first of audio.
    void readTrack(const Mpeg4Box& box, int depth)
    {
        const Findings before = found;
        tables = {};
        found.isAudio = false;
        found.edits = {};
        walk(box.body, box.end, depth + 1);
        // Every piece of an edit list has entries of its own.
        const std::uint64_t pieces = std::clamp<std::uint64_t>(found.edits.count, 1, mostSteps);
        demand(std::min(tables.entries(), fileBytes + 1) * pieces);
        if (!found.isAudio || audioSeen)
            found = before;
        else
            audioSeen = true;
    }

    void demand(std::uint64_t count) { entries += std::min(count, fileBytes + 1); }

    static constexpr int mostSteps = 1000000;

    InputFile file;
    std::uint64_t fileBytes = 0;
    Findings found;
    TrackTables tables;        ///< of the track that is being read
    std::uint64_t entries = 0; ///< that the index would have
    bool audioSeen = false;
    int steps = 0;
};

std::optional<Mpeg4Timing> timingOf(const Findings& found)
{
    constexpr std::uint64_t unbelievable = std::uint64_t{1} << 40;

    if (found.edits.count != 1 || found.movieUnits == 0 || found.mediaUnits == 0)
        return std::nullopt;
    if (found.mediaLength > unbelievable || found.edits.length > unbelievable
        || found.edits.start >= found.mediaLength)
        return std::nullopt;
    Mpeg4Timing timing{found.mediaUnits, found.edits.start, found.mediaLength - found.edits.start};
    const double movieUnit = static_cast<double>(found.mediaUnits) / static_cast<double>(found.movieUnits);
    const double edited = static_cast<double>(found.edits.length) * movieUnit;
    // A length of 0 stands for all that is there.
    if (found.edits.length > 0 && edited + movieUnit < static_cast<double>(timing.length))
        timing.length = static_cast<std::uint64_t>(std::llround(edited));
    return timing;
}

} // namespace

Mpeg4Facts readMpeg4Facts(const std::filesystem::path& path)
{
    BoxReader reader;
    if (!reader.open(path))
        return {};
    Mpeg4Facts facts;
    if (const auto found = reader.read())
        facts.timing = timingOf(*found);
    facts.isPlausible = reader.isPlausible();
    return facts;
}
