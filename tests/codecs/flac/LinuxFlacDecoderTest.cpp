#include "codecs/flac/FlacDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/AudioMaker.h"

#include <QDir>

#include <fcntl.h>
#include <unistd.h>

class LinuxFlacDecoderTest : public EncoderTest {};

// A disc or a share that goes away. The whole test ends where the decoder never does.
TEST_F(LinuxFlacDecoderTest, AReadErrorEndsTheStream)
{
    encode(FlacEncoderId, file("s.flac"), {44100, 2, 16}, audiomaker::noise(400000, 3));
    const auto playWithFailingReads = [this] {
        constexpr unsigned int secondsToEnd = 60;
        alarm(secondsToEnd);
        FlacDecoder decoder;
        if (!decoder.open(toPath(file("s.flac"))) || !decoder.read())
            _exit(2);
        // Reads from a folder fail, and so do the decoder's once its file is one.
        const int folderDescriptor = ::open("/", O_RDONLY | O_DIRECTORY);
        for (const QString& number : QDir(QStringLiteral("/proc/self/fd")).entryList()) {
            if (QFile::symLinkTarget(QStringLiteral("/proc/self/fd/") + number) == file("s.flac"))
                dup2(folderDescriptor, number.toInt());
        }
        quint64 frames = 0;
        while (const auto block = decoder.read())
            frames += block->frames;
        _exit(frames < 200000 - 4096 && !decoder.read() ? 0 : 3);
    };
    EXPECT_EXIT(playWithFailingReads(), ::testing::ExitedWithCode(0), "");
}
