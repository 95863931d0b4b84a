#include "codecs/DecoderFiles.h"
#include "codecs/Mutation.h"

// Files whose pages are not what an encoder made of them.
class OggDamageTest : public EncoderTest {
protected:
    static constexpr qsizetype fixedHeader = 27;

    struct Page {
        qsizetype start = 0;
        qsizetype bytes = 0;
        qint64 lastFrame = 0; ///< frames of the stream up to the end of the page
    };

    QByteArray encoded(quint64 frames)
    {
        decoderfiles::encode(file("s.ogg"), {44100, 2, 16}, decoderfiles::audio(frames, 2));
        return readAll(file("s.ogg"));
    }

    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.ogg"), bytes);
        return decode(file("a.ogg"));
    }

    static QList<Page> pagesOf(const QByteArray& bytes)
    {
        QList<Page> pages;
        for (qsizetype start = 0; start + fixedHeader <= bytes.size();) {
            EXPECT_EQ(bytes.mid(start, 4), "OggS");
            const qsizetype segments = static_cast<quint8>(bytes[start + fixedHeader - 1]);
            qsizetype size = fixedHeader + segments;
            for (qsizetype i = 0; i < segments; ++i)
                size += static_cast<quint8>(bytes[start + fixedHeader + i]);
            pages.append({start, size, byteorder::readLittle<qint64>(bytes.constData() + start + 6)});
            start += size;
        }
        return pages;
    }

    /// A page of valid checksum; a body whose length divides by 255 goes on on the next.
    static QByteArray page(quint32 serial, quint32 number, const QByteArray& body)
    {
        QByteArray lacing(body.size() / 255, '\xFF');
        if (body.size() % 255 != 0)
            lacing.append(static_cast<char>(body.size() % 255));
        QByteArray made = QByteArray("OggS\0\0", 6) + little(quint64{0}) + little(serial) + little(number)
                          + little(quint32{0}) + static_cast<char>(lacing.size()) + lacing + body;
        sealOggPages(made);
        return made;
    }

    static quint32 serialOf(const QByteArray& bytes)
    {
        return byteorder::readLittle<quint32>(bytes.constData() + 14);
    }

    /// So many empty comments that eight bytes for each of them come to 8 within 32 bits.
    static QByteArray endlessComments(qsizetype size)
    {
        return (QByteArray("\x03vorbis") + little(quint32{0}) + little(quint32{0x20000001}))
            .leftJustified(size, '\0');
    }
};

TEST_F(OggDamageTest, APageOfAnotherStreamAmongTheHeadersIsPassedOver)
{
    const QByteArray whole = encoded(20000);
    const QByteArray foreign = page(serialOf(whole) + 1, 1, endlessComments(100));
    const qsizetype second = pagesOf(whole)[1].start;
    EXPECT_EQ(decodeBytes(whole.left(second) + foreign + whole.mid(second)).samples,
              decodeBytes(whole).samples);
}

TEST_F(OggDamageTest, AGapInThePageNumbersAmongTheHeadersIsRefused)
{
    QByteArray whole = encoded(20000);
    const QList<Page> pages = pagesOf(whole);
    const QByteArray unfinished = page(serialOf(whole), 1, endlessComments(255));
    for (qsizetype i = 1; i < pages.size(); ++i)
        whole.replace(pages[i].start + 18, 4, little(static_cast<quint32>(i + 2)));
    sealOggPages(whole);
    EXPECT_FALSE(decodeBytes(whole.left(pages[1].start) + unfinished + whole.mid(pages[1].start)).opened);
}

TEST_F(OggDamageTest, ADamagedPageCostsNoMoreThanItself)
{
    constexpr qsizetype minute = 60 * 44100;
    // After a hole, a block of up to 4,096 frames has nothing to overlap with.
    constexpr qsizetype block = 4096;
    const QByteArray whole = encoded(minute);
    const Decoded all = decodeBytes(whole);
    ASSERT_EQ(all.frames(), static_cast<quint64>(minute));
    const QList<Page> pages = pagesOf(whole);
    ASSERT_GT(pages.size(), 50);
    for (const qsizetype number : {qsizetype{4}, pages.size() / 2, pages.size() - 3}) {
        const Page& page = pages[number];
        QByteArray bytes = whole;
        const qsizetype place = page.start + page.bytes / 2;
        bytes[place] = static_cast<char>(bytes[place] ^ 1);
        const Decoded damaged = decodeBytes(bytes);
        EXPECT_EQ(damaged.total, all.total);
        const qsizetype first = pages[number - 1].lastFrame - block;
        const qsizetype last = page.lastFrame + block;
        const auto frames = static_cast<qsizetype>(damaged.frames());
        EXPECT_LE(frames, minute);
        EXPECT_GE(frames, minute - (last - first)) << number;
        EXPECT_EQ(damaged.samples.first(2 * first), all.samples.first(2 * first)) << number;
        EXPECT_EQ(damaged.samples.last(2 * (minute - last)), all.samples.last(2 * (minute - last))) << number;
    }
}

TEST_F(OggDamageTest, AMissingPageCostsNoMoreThanItself)
{
    const QByteArray whole = encoded(200000);
    const Decoded all = decodeBytes(whole);
    const QList<Page> pages = pagesOf(whole);
    const qsizetype number = pages.size() / 2;
    QByteArray bytes = whole;
    bytes.remove(pages[number].start, pages[number].bytes);
    const Decoded damaged = decodeBytes(bytes);
    const qsizetype rest = 200000 - pages[number].lastFrame - 4096;
    EXPECT_EQ(damaged.samples.last(2 * rest), all.samples.last(2 * rest));
}

TEST_F(OggDamageTest, DamagedHeaderPagesAreRefused)
{
    const QByteArray whole = encoded(5000);
    for (const qsizetype place : {0, 5, 30, 60, 100, 1000, 3000}) {
        QByteArray bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ 0x10);
        EXPECT_FALSE(decodeBytes(bytes).opened) << place;
    }
}

TEST_F(OggDamageTest, ATruncatedFileEndsEarly)
{
    const QByteArray whole = encoded(200000);
    const Decoded all = decodeBytes(whole);
    const Decoded cut = decodeBytes(whole.left(whole.size() * 2 / 3));
    EXPECT_GT(cut.frames(), 50000u);
    EXPECT_LT(cut.frames(), all.total.value_or(0));
    const qsizetype same = cut.samples.size() - 2 * 8192;
    EXPECT_EQ(cut.samples.mid(0, same), all.samples.mid(0, same));
}

TEST_F(OggDamageTest, JunkBehindTheLastPageIsIgnored)
{
    const QByteArray whole = encoded(20000);
    const Decoded plain = decodeBytes(whole);
    EXPECT_EQ(decodeBytes(whole + "TAG junk that someone left here").samples, plain.samples);
    EXPECT_EQ(decodeBytes(whole + QByteArray(300000, '\0')).samples, plain.samples);
}
