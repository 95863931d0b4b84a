#include "codecs/dsd/DsfDecoder.h"

#include "codecs/DecoderFiles.h"
#include "codecs/FloatSample.h"
#include "codecs/dsd/DsdFirFilter.h"

using decoderfiles::DsfParts;

class DsfDecoderTest : public EncoderTest {
protected:
    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.dsf"), bytes);
        return decodeWith<DsfDecoder>(file("a.dsf"));
    }

    static QByteArray reversed(QByteArray bytes)
    {
        for (char& byte : bytes) {
            quint32 turned = 0;
            for (int bit = 0; bit < 8; ++bit)
                turned |= ((static_cast<quint8>(byte) >> bit) & 1u) << (7 - bit);
            byte = static_cast<char>(turned);
        }
        return bytes;
    }

    static QList<qint32> filtered(const QByteArray& channel, bool lsbFirst)
    {
        DsdFirFilter filter;
        std::vector<float> values(static_cast<std::size_t>(channel.size()));
        decodeDsdBytes(filter, reinterpret_cast<const quint8*>(channel.constData()), values.size(), lsbFirst,
                       values.data(), 1, 1);
        QList<qint32> samples;
        for (const float value : values)
            samples.append(sampleFromFloat(value));
        return samples;
    }
};

TEST_F(DsfDecoderTest, ChannelsLieInBlocksAndTheFilterRunsOnAcrossThem)
{
    constexpr int block = 64;
    const QByteArray data = decoderfiles::bits(2 * block * 5, 3);
    const Decoded decoded = decodeBytes(decoderfiles::dsf({.blockBytes = block}, data));
    EXPECT_EQ(decoded.format, (AudioFormat{352800, 2, 24}));
    EXPECT_EQ(decoded.total, quint64{block * 5});
    EXPECT_EQ(decoded.blocks, QList<quint64>(5, block));
    for (int channel = 0; channel < 2; ++channel) {
        QByteArray own;
        for (int i = 0; i < 5; ++i)
            own += data.mid((2 * i + channel) * block, block);
        const QList<qint32> expected = filtered(own, true);
        for (qsizetype i = 0; i < expected.size(); ++i)
            ASSERT_EQ(decoded.samples[2 * i + channel], expected[i]) << i;
    }
}

TEST_F(DsfDecoderTest, TheRateIsAnEighth)
{
    const QByteArray data = decoderfiles::bits(16, 1);
    EXPECT_EQ(decodeBytes(decoderfiles::dsf({.frequency = 5644800}, data)).format.sampleRate, 705600u);
    EXPECT_EQ(decodeBytes(decoderfiles::dsf({.frequency = 15}, data)).format.sampleRate, 1u);
    EXPECT_EQ(decodeBytes(decoderfiles::dsf({.frequency = 0xFFFFFFFF}, data)).format.sampleRate, 0x1FFFFFFFu);
}

TEST_F(DsfDecoderTest, ReversedBitsWithTheOtherBitOrderGiveTheSameSamples)
{
    const QByteArray data = decoderfiles::bits(2 * 4096, 4);
    const Decoded low = decodeBytes(decoderfiles::dsf({.bits = 1}, data));
    EXPECT_EQ(low.frames(), 4096u);
    for (const quint32 bits : {8u, 0u, 2u})
        EXPECT_EQ(decodeBytes(decoderfiles::dsf({.bits = bits}, reversed(data))).samples, low.samples)
            << bits;
    EXPECT_NE(decodeBytes(decoderfiles::dsf({.bits = 8}, data)).samples, low.samples);
}

TEST_F(DsfDecoderTest, ConstantBitsOfBothSignsEndAtFullScaleDown)
{
    for (const char byte : {'\xFF', '\x00'}) {
        const Decoded decoded =
            decodeBytes(decoderfiles::dsf({.channels = 1, .blockBytes = 64}, QByteArray(64, byte)));
        EXPECT_EQ(decoded.samples.last(), sampleFromFloat(byte ? 1.0f : -1.0f)) << int{byte};
        EXPECT_EQ(decoded.samples.last(), INT32_MIN);
    }
}

TEST_F(DsfDecoderTest, UnusableFieldsAreRefused)
{
    const QByteArray data = decoderfiles::bits(16, 1);
    EXPECT_FALSE(decodeBytes(decoderfiles::dsf({.formatId = 1}, data)).opened);
    EXPECT_FALSE(decodeBytes(decoderfiles::dsf({.channels = 0}, data)).opened);
    EXPECT_FALSE(decodeBytes(decoderfiles::dsf({.channels = 65536, .blockBytes = 1}, data)).opened);
    EXPECT_FALSE(decodeBytes(decoderfiles::dsf({.frequency = 0}, data)).opened);
    EXPECT_FALSE(decodeBytes(decoderfiles::dsf({.blockBytes = 0}, data)).opened);
}

TEST_F(DsfDecoderTest, ABlockOfMoreThan256MiBIsRefused)
{
    const auto opens = [this](quint32 channels, quint32 blockBytes, quint64 dataBytes) {
        writeAll(file("a.dsf"),
                 decoderfiles::dsf(
                     {.channels = channels, .blockBytes = blockBytes, .dataChunkBytes = 12 + dataBytes},
                     decoderfiles::bits(16, 1)));
        return DsfDecoder().open(file("a.dsf").toStdString());
    };
    constexpr quint64 endless = quint64{1} << 62;
    constexpr quint32 most = 256 * 1024 * 1024 / 4; // bytes of all channels, a sample of 4 bytes from each
    EXPECT_TRUE(opens(2, most / 2, endless));
    EXPECT_FALSE(opens(2, most / 2 + 1, endless));
    EXPECT_FALSE(opens(1, 0xFFFFFFFF, endless));
    EXPECT_FALSE(opens(65535, 4096, endless));
}

TEST_F(DsfDecoderTest, ABlockSizeBeyondTheDataIsOneShortBlock)
{
    const QByteArray data = decoderfiles::bits(32, 1);
    const Decoded decoded = decodeBytes(decoderfiles::dsf({.channels = 2, .blockBytes = 0xFFFFFFFF}, data));
    EXPECT_EQ(decoded.blocks, QList<quint64>{16});
    EXPECT_EQ(decoded.samples.first(), filtered(data.left(16), true).first());
}

TEST_F(DsfDecoderTest, ADataChunkOfItsHeaderAloneHasAFormatAndNoFrames)
{
    for (const quint64 size : {quint64{12}, quint64{11}, quint64{1}}) {
        const Decoded decoded = decodeBytes(decoderfiles::dsf({.dataChunkBytes = size}, {}));
        EXPECT_TRUE(decoded.opened);
        EXPECT_EQ(decoded.format.sampleRate, 352800u);
        EXPECT_EQ(decoded.total, 0u);
        EXPECT_TRUE(decoded.blocks.isEmpty());
    }
}

TEST_F(DsfDecoderTest, TheLastShortBlockStillHoldsOneRunForEachChannel)
{
    const QByteArray data = decoderfiles::bits(2 * 64 + 2 * 10 + 1, 6);
    const Decoded decoded = decodeBytes(decoderfiles::dsf({.blockBytes = 64}, data));
    EXPECT_EQ(decoded.blocks, (QList<quint64>{64, 10}));
    const QList<qint32> left = filtered(data.mid(0, 64) + data.mid(128, 10), true);
    EXPECT_EQ(decoded.samples[2 * 73], left[73]);
}

TEST_F(DsfDecoderTest, ATruncatedFileEndsInOneBitZeroesUpToItsLength)
{
    const QByteArray data = decoderfiles::bits(64, 7);
    const Decoded decoded =
        decodeBytes(decoderfiles::dsf({.channels = 1, .blockBytes = 64, .dataChunkBytes = 12 + 192}, data));
    EXPECT_EQ(decoded.frames(), 192u);
    EXPECT_EQ(decoded.samples, filtered(data + QByteArray(128, '\0'), true));
    EXPECT_EQ(decoded.samples.last(), INT32_MIN);
}

TEST_F(DsfDecoderTest, EveryHeaderCutShortIsRefused)
{
    const QByteArray whole = decoderfiles::dsf({}, {});
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decodeBytes(whole.left(length)).opened) << length;
    for (const int place : {0, 28, 80})
        EXPECT_FALSE(decodeBytes(whole.left(place) + "ZZZZ" + whole.mid(place + 4)).opened) << place;
}
