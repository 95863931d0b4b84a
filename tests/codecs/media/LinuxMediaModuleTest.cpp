#include "codecs/DecoderFiles.h"
#include "support/Tool.h"

#include <QDir>
#include <QFileInfo>

#include <dlfcn.h>

// A process of its own for each conversion, since a module that is loaded stays.
class LinuxMediaModuleTest : public EncoderTest {
protected:
    static constexpr quint64 frames = 44100;

    QString source(const char* name) const
    {
        decoderfiles::make(file(name), frames);
        return file(name);
    }

    ToolResult convert(const char* from, const char* to, EncoderId encoder) const
    {
        return runTool(program, {source(from), file(to), QString::number(encoder)});
    }

    /// Goes on with a copy of the program, at whose side the module is not.
    void moveProgram()
    {
        const QDir moved(file("moved/programs/here"));
        ASSERT_TRUE(QDir().mkpath(moved.path()));
        const QString copy = moved.filePath(QStringLiteral("program"));
        ASSERT_TRUE(QFile::copy(program, copy));
        const QString path = QFileInfo(program).dir().relativeFilePath(QStringLiteral(TARVEL_MEDIA_MODULE));
        module = QDir::cleanPath(moved.filePath(path));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(module).path()));
        program = copy;
    }

    void expectRefusal(const char* reason) const
    {
        const ToolResult decoding = convert("a.mp3", "a.wav", WavEncoderId);
        EXPECT_TRUE(decoding.ok());
        EXPECT_EQ(decoding.output, "refused without FFmpeg\n");
        EXPECT_TRUE(decoding.errors.startsWith("MediaModule: cannot be loaded: "))
            << decoding.errors.toStdString();
        EXPECT_TRUE(decoding.errors.contains(reason)) << decoding.errors.toStdString();

        const ToolResult encoding = convert("b.wav", "b.m4a", AacEncoderId);
        EXPECT_TRUE(encoding.ok());
        EXPECT_EQ(encoding.output, "refused without FFmpeg\n");

        const ToolResult other = convert("c.flac", "c.wav", WavEncoderId);
        EXPECT_EQ(other.output, "converted without FFmpeg\n");
    }

    QString program = QStringLiteral(TARVEL_CONVERT_AT_NEED);
    QString module; ///< where the moved program looks for it
};

TEST_F(LinuxMediaModuleTest, TheProgramIsNotLinkedWithWhatItBrings)
{
    const ToolResult linked =
        runTool(QStringLiteral("readelf"), {QStringLiteral("--dynamic"), QStringLiteral(TARVEL_PROGRAM)});
    ASSERT_TRUE(linked.ok()) << linked.errors.toStdString();
    EXPECT_TRUE(linked.output.contains("[libFLAC.so"));
    EXPECT_FALSE(linked.output.contains("[libav")) << linked.output.toStdString();
}

// What is shown beside them could take the place of the program's own, or of a library's.
TEST_F(LinuxMediaModuleTest, ShowsItsTwoFunctionsAlone)
{
    const ToolResult shown = runTool(
        QStringLiteral("nm"), {QStringLiteral("--dynamic"), QStringLiteral("--defined-only"),
                               QStringLiteral("--format=just-symbols"), QStringLiteral(TARVEL_MEDIA_MODULE)});
    ASSERT_TRUE(shown.ok()) << shown.errors.toStdString();
    EXPECT_EQ(shown.output, "newMediaReader\nnewMediaWriter\n");
}

TEST_F(LinuxMediaModuleTest, OtherFormatsDoNotLoadIt)
{
    for (const char* name : {"a.flac", "a.ogg", "a.opus", "a.wv", "a.aiff", "a.wav"})
        EXPECT_EQ(convert(name, "out.flac", FlacEncoderId).output, "converted without FFmpeg\n") << name;
    EXPECT_EQ(convert("b.wav", "b.mp3", Mp3EncoderId).output, "converted without FFmpeg\n");
}

TEST_F(LinuxMediaModuleTest, DecodesAsTheLibraryItselfDoes)
{
    for (const char* name : {"a.mp3", "a.aac", "a.m4a"}) {
        EXPECT_EQ(convert(name, "out.wav", WavEncoderId).output, "converted with FFmpeg\n") << name;
        EXPECT_EQ(decode(file("out.wav")).samples, keepBits(decode(file(name)).samples, 24)) << name;
    }
}

TEST_F(LinuxMediaModuleTest, EncodesWhatAnIndependentReaderTakes)
{
    EXPECT_EQ(convert("a.wav", "lossless.m4a", AlacEncoderId).output, "converted with FFmpeg\n");
    EXPECT_EQ(decodeWithFfmpeg(file("lossless.m4a")), decode(file("a.wav")).samples);
    EXPECT_EQ(convert("a.wav", "lossy.m4a", AacEncoderId).output, "converted with FFmpeg\n");
    EXPECT_FALSE(decodeWithFfmpeg(file("lossy.m4a")).isEmpty());
}

TEST_F(LinuxMediaModuleTest, IsFoundBesideTheProgramWhereverThatIs)
{
    moveProgram();
    ASSERT_TRUE(QFile::copy(QStringLiteral(TARVEL_MEDIA_MODULE), module));
    EXPECT_EQ(convert("a.mp3", "a.wav", WavEncoderId).output, "converted with FFmpeg\n");
}

TEST_F(LinuxMediaModuleTest, WithoutItItsFormatsAreRefusedAndOthersServed)
{
    moveProgram();
    expectRefusal("No such file");
}

TEST_F(LinuxMediaModuleTest, AFileThatIsNoLibraryIsRefused)
{
    moveProgram();
    for (const QByteArray& bytes : {QByteArray(), QByteArray(100'000, 'x')}) {
        writeAll(module, bytes);
        expectRefusal(bytes.isEmpty() ? "file too short" : "invalid ELF header");
    }
}

TEST_F(LinuxMediaModuleTest, ALibraryOfSomethingElseIsRefused)
{
    moveProgram();
    Dl_info other;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&dladdr), &other), 0);
    ASSERT_TRUE(QFile::copy(QFile::decodeName(other.dli_fname), module));
    expectRefusal("newMediaReader");
}
