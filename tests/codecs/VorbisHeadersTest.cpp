#include "codecs/VorbisHeaders.h"

#include "codecs/DecoderFiles.h"
#include "codecs/OggPages.h"

// Headers of real files, and the same with one count made hostile.
class VorbisHeadersTest : public EncoderTest {
protected:
    std::vector<QByteArray> headers(quint16 channels = 2, quint32 rate = 44100)
    {
        decoderfiles::encode(file("a.ogg"), {rate, channels, 16}, decoderfiles::audio(2000, channels));
        const CFile opened = openForReading(toPath(file("a.ogg")));
        return checkOggPages(opened.get(), 3).headers;
    }

    /// The headers with one book more, in front of the others.
    static std::vector<QByteArray> withBook(std::vector<QByteArray> packets, const QByteArray& book)
    {
        constexpr int firstBook = 7 + 1; // packet type, count of books
        packets[2][firstBook - 1] = static_cast<char>(packets[2][firstBook - 1] + 1);
        packets[2].insert(firstBook, book);
        return packets;
    }
};

TEST_F(VorbisHeadersTest, RealHeadersAreSound)
{
    for (const quint32 rate : {8000u, 22050u, 44100u, 96000u}) {
        for (const quint16 channels : {quint16{1}, quint16{2}, quint16{6}})
            EXPECT_TRUE(vorbisHeadersAreSound(headers(channels, rate))) << rate << " " << channels;
    }
}

TEST_F(VorbisHeadersTest, MissingOrMixedUpPacketsAreNot)
{
    const auto good = headers();
    EXPECT_FALSE(vorbisHeadersAreSound({}));
    EXPECT_FALSE(vorbisHeadersAreSound({good[0], good[1]}));
    EXPECT_FALSE(vorbisHeadersAreSound({good[0], good[2], good[1]}));
    EXPECT_FALSE(vorbisHeadersAreSound({QByteArray(), QByteArray(), QByteArray()}));
}

TEST_F(VorbisHeadersTest, CommentsThatReachBeyondTheirPacketAreNot)
{
    const auto good = headers();
    for (const quint32 length : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 100000u}) {
        auto bad = good;
        bad[1].replace(7, 4, little(length)); // of the vendor's name
        EXPECT_FALSE(vorbisHeadersAreSound(bad)) << length;
    }
    const QByteArray start = QByteArray("\x03vorbis") + little(quint32{0});
    for (const quint32 count : {1u, 0x20000001u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_FALSE(vorbisHeadersAreSound({good[0], start + little(count) + '\x01', good[2]})) << count;
    EXPECT_TRUE(vorbisHeadersAreSound({good[0], start + little(quint32{0}) + '\x01', good[2]}));
    EXPECT_FALSE(vorbisHeadersAreSound({good[0], start + little(quint32{0}), good[2]}));
}

TEST_F(VorbisHeadersTest, BooksOfMillionsOfEntriesAreNot)
{
    const auto good = headers();
    constexpr int firstBook = 7 + 1 + 3; // packet type, count of books, mark of the first one
    auto bad = good;
    bad[2].replace(firstBook, 5, QByteArray("\x01\x00\xFF\xFF\xFF", 5));
    EXPECT_FALSE(vorbisHeadersAreSound(bad));
    bad = good;
    bad[2].replace(firstBook, 5, QByteArray("\xFF\xFF\xFF\x00\x00", 5));
    EXPECT_FALSE(vorbisHeadersAreSound(bad));
}

TEST_F(VorbisHeadersTest, ABookWithoutCodesThatIsReadFromIsNot)
{
    // In front of the real ones, the book takes over the number 0, which is read from.
    // Two entries, not sorted, and no lookup fill whole bytes in both cases.
    const QByteArray start("\x42\x43\x56\x01\x00\x02\x00\x00", 8);
    const QByteArray sparseAndAbsent("\x02", 1);
    const QByteArray oneBitEach("\x00\x00", 2);
    EXPECT_FALSE(vorbisHeadersAreSound(withBook(headers(), start + sparseAndAbsent)));
    EXPECT_TRUE(vorbisHeadersAreSound(withBook(headers(), start + oneBitEach)));
}

// The library loses memory over a book of codes that leave no room for each other,
// and over one with a code of 32 bits.
TEST_F(VorbisHeadersTest, ABookOfMoreCodesThanThereAreOrOfTooLongOnesIsNot)
{
    // One dimension, ten entries, not sorted, not sparse, a length less one each,
    // and no lookup: whole bytes, so that the books behind it stay readable.
    const auto withCodes = [](const std::vector<QByteArray>& packets, const QList<quint64>& lengths) {
        quint64 bits = 0;
        for (qsizetype i = 0; i < lengths.size(); ++i)
            bits |= (lengths[i] - 1) << (2 + 5 * i);
        QByteArray book("\x42\x43\x56\x01\x00\x0A\x00\x00", 8);
        for (int byte = 0; byte < 7; ++byte)
            book.append(static_cast<char>(bits >> (8 * byte)));
        return withBook(packets, book);
    };
    EXPECT_TRUE(vorbisHeadersAreSound(withCodes(headers(), {1, 2, 3, 4, 5, 6, 7, 8, 9, 9})));
    EXPECT_FALSE(vorbisHeadersAreSound(withCodes(headers(), {1, 2, 3, 4, 5, 6, 7, 8, 8, 9})));
    EXPECT_TRUE(vorbisHeadersAreSound(withCodes(headers(), {1, 2, 3, 4, 5, 6, 7, 8, 9, 31})));
    EXPECT_FALSE(vorbisHeadersAreSound(withCodes(headers(), {1, 2, 3, 4, 5, 6, 7, 8, 9, 32})));
    EXPECT_FALSE(vorbisHeadersAreSound(withCodes(headers(), {1, 1, 1, 1, 1, 1, 1, 1, 1, 1})));
}

// Every number to the power of no dimensions is 1, so the search for the largest
// one that fits never ended.
TEST_F(VorbisHeadersTest, ATableOfNoDimensionsIsNot)
{
    auto bad = headers();
    constexpr int firstBook = 7 + 1;
    // Mark, no dimensions, one entry, not sorted, not sparse, length 1, and then a table.
    bad[2] =
        bad[2].left(firstBook) + QByteArray("\x42\x43\x56\x00\x00\x01\x00\x00\x80", 9) + QByteArray(60, '\0');
    EXPECT_FALSE(vorbisHeadersAreSound(bad));
}

TEST_F(VorbisHeadersTest, ASetupCutAnywhereInItsTablesIsNot)
{
    const auto good = headers();
    for (qsizetype length = 0; length < good[2].size() * 9 / 10; length += 13)
        EXPECT_FALSE(vorbisHeadersAreSound({good[0], good[1], good[2].left(length)})) << length;
}
