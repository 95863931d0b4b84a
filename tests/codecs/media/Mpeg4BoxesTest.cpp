#include "codecs/media/Mpeg4Boxes.h"

#include "codecs/DecoderFiles.h"

namespace {

QByteArray big(qsizetype bytes, quint64 value)
{
    QByteArray text;
    while (bytes-- > 0)
        text.append(static_cast<char>(value >> (8 * bytes)));
    return text;
}

QByteArray box(const char* id, const QByteArray& body)
{
    return big(4, 8 + static_cast<quint64>(body.size())) + id + body;
}

} // namespace

class Mpeg4BoxesTest : public EncoderTest {
protected:
    /// The first box of a file with these bytes.
    std::optional<Mpeg4Box> first(const QByteArray& bytes)
    {
        writeAll(file("boxes"), bytes);
        input.close();
        EXPECT_TRUE(input.open(toPath(file("boxes"))));
        return boxAt(input, 0, static_cast<quint64>(bytes.size()));
    }

    InputFile input;
};

TEST_F(Mpeg4BoxesTest, ASizeIsShortLongOrReachesToTheEnd)
{
    const QByteArray body(10, 'x');
    const auto plain = first(box("free", body) + box("mdat", body));
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->id, chunkId("free"));
    EXPECT_EQ(plain->body, 8u);
    EXPECT_EQ(plain->end, 18u);
    EXPECT_EQ(boxAt(input, plain->end, 36)->id, chunkId("mdat"));
    EXPECT_FALSE(boxAt(input, 36, 36));

    const auto wide = first(big(4, 1) + "mdat" + big(8, 26) + body + body);
    ASSERT_TRUE(wide);
    EXPECT_EQ(wide->body, 16u);
    EXPECT_EQ(wide->end, 26u);
    EXPECT_EQ(first(big(4, 0) + "mdat" + body)->end, 18u);
}

TEST_F(Mpeg4BoxesTest, ABoxEndsWithTheOneAroundItAndOneWithoutRoomForItsHeaderIsNone)
{
    EXPECT_EQ(first(big(4, 500) + "mdat" + QByteArray(10, 'x'))->end, 18u);
    EXPECT_FALSE(first(big(4, 7) + "mdat" + QByteArray(10, 'x')));
    EXPECT_FALSE(first(big(4, 1) + "mdat" + big(8, 15) + QByteArray(10, 'x')));
    EXPECT_FALSE(first(big(4, 1) + "mdat" + big(8, largestMpeg4File + 1)));
    EXPECT_FALSE(first(big(4, 20) + "md"));
}

TEST_F(Mpeg4BoxesTest, APauseIsNoEditAndBothWidthsAreRead)
{
    const QByteArray pause = big(4, 100) + big(4, 0xFFFFFFFF) + big(4, 0x10000);
    const QByteArray played = big(4, 700) + big(4, 2112) + big(4, 0x10000);
    const auto list = first(box("elst", big(4, 0) + big(4, 2) + pause + played));
    const Mpeg4Edits edits = readEdits(input, *list);
    EXPECT_EQ(edits.count, 1u);
    EXPECT_EQ(edits.start, 2112u);
    EXPECT_EQ(edits.length, 700u);

    const auto wide =
        first(box("elst", big(4, 0x1000000) + big(4, 1) + big(8, 700) + big(8, 2112) + big(4, 0x10000)));
    EXPECT_EQ(readEdits(input, *wide).start, 2112u);
}

TEST_F(Mpeg4BoxesTest, NoMoreEntriesAreReadThanTheBoxHasRoomFor)
{
    // Room for one of eight bytes, and some more behind the box.
    const QByteArray entry = big(4, 3) + big(4, 1024);
    const auto times = first(box("stts", big(4, 0) + big(4, 0xFFFFFFFF) + entry) + entry + entry);
    // The count itself takes room as well: two entries at the most.
    EXPECT_EQ(readMediaLength(input, *times), 2 * 3 * 1024u);

    const auto chunks = first(box("stco", big(4, 0) + big(4, 0xFFFFFFFF) + big(4, 1) + big(4, 2)));
    EXPECT_EQ(readChunkCount(input, *chunks), 4u);

    const QByteArray many = big(4, 1) + big(4, 9) + big(4, 1);
    const QByteArray few = big(4, 2) + big(4, 4) + big(4, 1);
    const auto sizes = first(box("stsc", big(4, 0) + big(4, 2) + many + few));
    EXPECT_EQ(readLargestChunk(input, *sizes), 9u);
}
