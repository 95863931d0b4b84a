#include "codecs/media/Mpeg4Timing.h"

#include "codecs/InputFile.h"

#include <algorithm>

namespace {

struct Box {
    std::uint32_t id = 0;
    std::uint64_t body = 0; ///< offset in the file
    std::uint64_t end = 0;
};

/// What is gathered of the file and of its first audio track.
struct Findings {
    std::uint64_t movieUnits = 0;
    std::uint64_t mediaUnits = 0;
    std::uint64_t mediaLength = 0;
    std::uint64_t edits = 0;
    std::uint64_t editStart = 0;
    std::uint64_t editLength = 0; ///< in units of the movie
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

class BoxReader {
public:
    bool open(const std::filesystem::path& path)
    {
        std::error_code failure;
        const auto size = std::filesystem::file_size(path, failure);
        fileBytes = failure ? largestFile : std::min<std::uint64_t>(size, largestFile);
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
    std::optional<Box> next(std::uint64_t place, std::uint64_t end)
    {
        constexpr std::uint32_t toTheEnd = 0;
        constexpr std::uint32_t longSize = 1;
        file.clear();
        if (place >= end || !file.seek(place))
            return std::nullopt;
        std::uint64_t size = file.readBig<std::uint32_t>();
        Box box;
        box.id = file.readBig<std::uint32_t>();
        if (size == longSize)
            size = file.readBig<std::uint64_t>();
        else if (size == toTheEnd)
            size = end - place;
        box.body = file.position();
        const std::uint64_t headerBytes = box.body - place;
        if (!file.good() || size < headerBytes || size > largestFile)
            return std::nullopt;
        box.end = std::min(place + size, end);
        return box;
    }

    void walk(std::uint64_t place, std::uint64_t end, int depth)
    {
        constexpr int deepest = 8;
        while (depth < deepest && steps < mostSteps) {
            ++steps;
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
        case chunkId("dinf"):
        case chunkId("udta"):
        case chunkId("tref"):
        case chunkId("traf"):
            return walk(box.body, box.end, depth + 1);
        case chunkId("moof"):
        case chunkId("mvex"):
            found.isFragmented = true;
            return walk(box.body, box.end, depth + 1);
        case chunkId("mvhd"):
            found.movieUnits = readUnits();
            return;
        case chunkId("mdhd"):
            found.mediaUnits = readUnits();
            return;
        case chunkId("hdlr"):
            file.skip(8);
            found.isAudio = file.readMagic("soun") || found.isAudio;
            return;
        case chunkId("elst"):
            return readEdits(box);
        case chunkId("stts"):
            return readSampleTimes(box);
        case chunkId("stsz"):
        case chunkId("stz2"):
            file.skip(8); // version, and a size for all samples or for the fields of sizes
            tables.samples += file.readBig<std::uint32_t>();
            return;
        case chunkId("stco"):
        case chunkId("co64"):
            file.skip(4); // version
            tables.chunks += std::min<std::uint64_t>(file.readBig<std::uint32_t>(), (box.end - box.body) / 4);
            return;
        case chunkId("stsc"):
            return readChunkSizes(box);
        case chunkId("trun"):
            file.skip(4); // version and flags
            return demand(file.readBig<std::uint32_t>());
        default:
            return;
        }
    }

    /// Keeps what a track says only if it is the first of audio.
    void readTrack(const Box& box, int depth)
    {
        const Findings before = found;
        tables = {};
        found.isAudio = false;
        found.edits = 0;
        walk(box.body, box.end, depth + 1);
        // Every piece of an edit list has entries of its own.
        const std::uint64_t pieces = std::clamp<std::uint64_t>(found.edits, 1, mostSteps);
        demand(std::min(tables.entries(), fileBytes + 1) * pieces);
        if (!found.isAudio || audioSeen)
            found = before;
        else
            audioSeen = true;
    }

    void demand(std::uint64_t count) { entries += std::min(count, fileBytes + 1); }

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

    void readChunkSizes(const Box& box)
    {
        constexpr std::uint64_t entryBytes = 12;
        file.readBig<std::uint32_t>(); // version
        const std::uint64_t stated = file.readBig<std::uint32_t>();
        const std::uint64_t count = std::min(stated, (box.end - box.body) / entryBytes);
        for (std::uint64_t i = 0; i < count && file.good(); ++i) {
            file.readBig<std::uint32_t>(); // the first chunk of its kind
            const std::uint64_t samples = file.readBig<std::uint32_t>();
            tables.samplesAChunk = std::max(tables.samplesAChunk, samples);
            file.readBig<std::uint32_t>(); // description
        }
    }

    static constexpr int mostSteps = 1000000;
    static constexpr std::uint64_t largestFile = std::uint64_t{1} << 42;

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

    if (found.edits != 1 || found.movieUnits == 0 || found.mediaUnits == 0)
        return std::nullopt;
    if (found.mediaLength > unbelievable || found.editLength > unbelievable
        || found.editStart >= found.mediaLength)
        return std::nullopt;
    Mpeg4Timing timing{found.mediaUnits, found.editStart, found.mediaLength - found.editStart};
    const double movieUnit = static_cast<double>(found.mediaUnits) / static_cast<double>(found.movieUnits);
    const double edited = static_cast<double>(found.editLength) * movieUnit;
    // A length of 0 stands for all that is there.
    if (found.editLength > 0 && edited + movieUnit < static_cast<double>(timing.length))
        timing.length = static_cast<std::uint64_t>(edited + 0.5);
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
