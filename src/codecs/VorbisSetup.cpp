#include "codecs/VorbisSetup.h"

#include <ogg/ogg.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

constexpr int unreadBytes = 7; // packet type and "vorbis"
// The largest books of music have some ten thousand values; all books of a file
// together stay below half a million.
constexpr std::int64_t mostBookValues = 1 << 18;
constexpr std::int64_t mostValues = 1 << 21;
// The library takes none of 32 bits.
constexpr std::int64_t longestCode = 31;

/// Smallest number of bits that a value fits in.
int bitLength(std::int64_t value)
{
    int bits = 0;
    for (; value > 0; value >>= 1)
        ++bits;
    return bits;
}

/// The largest number whose power of `dimensions` does not exceed `entries`.
std::int64_t lookupValues(std::int64_t entries, std::int64_t dimensions)
{
    const auto reaches = [&](std::int64_t root) {
        std::int64_t power = 1;
        for (std::int64_t i = 0; i < dimensions && power <= entries; ++i)
            power *= root;
        return power <= entries;
    };
    // Above this many dimensions only 1 to any power remains.
    if (dimensions >= bitLength(entries))
        return entries > 0 ? 1 : 0;
    std::int64_t root = 1;
    while (reaches(root + 1))
        ++root;
    return root;
}

struct Book {
    std::int64_t dimensions = 0;
    std::int64_t entries = 0;
    bool used = false; ///< at least one entry has a code
    std::int64_t codeSpace = 0;

    /// False for codes too long, and for those that no longer fit beside others.
    bool addCodes(std::int64_t count, std::int64_t length)
    {
        if (length > longestCode)
            return false;
        codeSpace += count << (longestCode - length);
        used = used || count > 0;
        return codeSpace <= std::int64_t{1} << longestCode;
    }
};

/// Walks the setup packet as far as its counts decide what is allocated.
class SetupReader {
public:
    explicit SetupReader(const QByteArray& packet)
    {
        // libogg's reader takes a non-const pointer and never writes through it.
        auto* bytes = const_cast<char*>(packet.constData()) + unreadBytes;
        oggpack_readinit(&reader, reinterpret_cast<unsigned char*>(bytes),
                         static_cast<int>(packet.size() - unreadBytes));
    }

    bool isSound() { return readBooks() && readTimes() && readFloors() && readResidues(); }

private:
    std::int64_t take(int bits)
    {
        const long value = oggpack_read(&reader, bits);
        if (value < 0 && bits > 0)
            complete = false;
        return complete ? static_cast<std::int64_t>(value) & 0xFFFFFFFF : 0;
    }

    bool readBooks();
    bool readBook();
    bool readLengths(Book& book);
    bool readOrderedLengths(Book& book);
    bool readLookup(const Book& book);
    bool readTimes();
    bool readFloors();
    bool readFloor();
    bool readResidues();
    bool readResidue();

    /// A book that codes are read with has codes.
    bool isUsable(std::int64_t number) const
    {
        return number < static_cast<std::int64_t>(books.size())
               && books[static_cast<std::size_t>(number)].used
               && books[static_cast<std::size_t>(number)].dimensions > 0;
    }

    oggpack_buffer reader;
    bool complete = true;
    std::int64_t values = 0; ///< that all books and residues ask for
    std::vector<Book> books;
};

bool SetupReader::readBooks()
{
    const std::int64_t count = take(8) + 1;
    for (std::int64_t i = 0; i < count; ++i) {
        if (!readBook())
            return false;
    }
    return complete;
}

bool SetupReader::readBook()
{
    constexpr std::int64_t mark = 0x564342;
    if (take(24) != mark)
        return false;
    Book book;
    book.dimensions = take(16);
    book.entries = take(24);
    const std::int64_t asked = book.entries * std::max<std::int64_t>(book.dimensions, 1);
    values += asked;
    if (!complete || asked > mostBookValues || values > mostValues)
        return false;
    const bool ordered = take(1) != 0;
    if (!(ordered ? readOrderedLengths(book) : readLengths(book)) || !readLookup(book))
        return false;
    books.push_back(book);
    return complete;
}

bool SetupReader::readLengths(Book& book)
{
    const bool sparse = take(1) != 0;
    for (std::int64_t i = 0; i < book.entries && complete; ++i) {
        if (sparse && take(1) == 0)
            continue;
        if (!book.addCodes(1, take(5) + 1))
            return false;
    }
    return complete;
}

bool SetupReader::readOrderedLengths(Book& book)
{
    std::int64_t length = take(5) + 1;
    for (std::int64_t entry = 0; entry < book.entries && complete; ++length) {
        if (length > longestCode)
            return false;
        const std::int64_t count = take(bitLength(book.entries - entry));
        entry += count;
        if (entry > book.entries || !book.addCodes(count, length))
            return false;
    }
    return complete;
}

bool SetupReader::readLookup(const Book& book)
{
    const std::int64_t type = take(4);
    if (type == 0)
        return complete;
    if (type > 2 || book.dimensions == 0)
        return false;
    take(32); // minimum
    take(32); // step
    const int bits = static_cast<int>(take(4)) + 1;
    take(1); // sequence
    std::int64_t count =
        type == 1 ? lookupValues(book.entries, book.dimensions) : book.entries * book.dimensions;
    for (; count > 0 && complete; --count)
        take(bits);
    return complete;
}

bool SetupReader::readTimes()
{
    const std::int64_t count = take(6) + 1;
    for (std::int64_t i = 0; i < count; ++i)
        take(16);
    return complete;
}

bool SetupReader::readFloors()
{
    const std::int64_t count = take(6) + 1;
    for (std::int64_t i = 0; i < count; ++i) {
        // Only the second of the two kinds is in use, and decodable.
        if (take(16) != 1 || !readFloor())
            return false;
    }
    return complete;
}

bool SetupReader::readFloor()
{
    constexpr std::size_t mostClasses = 16;
    std::vector<std::size_t> classOfPartition(static_cast<std::size_t>(take(5)));
    std::size_t classes = 0;
    for (std::size_t& number : classOfPartition) {
        number = static_cast<std::size_t>(take(4));
        classes = std::max(classes, number + 1);
    }
    std::int64_t dimensions[mostClasses] = {};
    for (std::size_t i = 0; i < classes; ++i) {
        dimensions[i] = take(3) + 1;
        const std::int64_t subclassBits = take(2);
        if (subclassBits > 0 && !isUsable(take(8)))
            return false;
        for (std::int64_t k = 0; k < std::int64_t{1} << subclassBits; ++k) {
            const std::int64_t book = take(8); // counted from 1, 0 for none
            if (book > 0 && !isUsable(book - 1))
                return false;
        }
    }
    take(2); // multiplier
    const int rangeBits = static_cast<int>(take(4));
    for (const std::size_t number : classOfPartition) {
        for (std::int64_t k = 0; k < dimensions[number]; ++k)
            take(rangeBits);
    }
    return complete;
}

bool SetupReader::readResidues()
{
    const std::int64_t count = take(6) + 1;
    for (std::int64_t i = 0; i < count; ++i) {
        if (!readResidue())
            return false;
    }
    return complete;
}

bool SetupReader::readResidue()
{
    // What the library takes for one entry of a table of class words.
    constexpr std::int64_t entryOverhead = 32;
    take(16); // kind
    take(24); // begin
    take(24); // end
    take(24); // partition size
    const std::int64_t classifications = take(6) + 1;
    const std::int64_t classBook = take(8);
    if (!complete || !isUsable(classBook))
        return false;
    const Book& book = books[static_cast<std::size_t>(classBook)];
    values += book.entries * (book.dimensions + entryOverhead);
    if (values > mostValues)
        return false;

    std::int64_t used = 0;
    for (std::int64_t i = 0; i < classifications; ++i) {
        std::int64_t cascade = take(3);
        if (take(1) != 0)
            cascade |= take(5) << 3;
        for (; cascade > 0; cascade >>= 1)
            used += cascade & 1;
    }
    for (; used > 0; --used) {
        if (!isUsable(take(8)))
            return false;
    }
    return complete;
}

} // namespace

bool vorbisSetupIsSound(const QByteArray& packet)
{
    return SetupReader(packet).isSound();
}
