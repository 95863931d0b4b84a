// Converts a file in a process that loads its module of codecs at need, and says
// what came of it and whether the module's libraries are there at the end.
//
//   tarvel_convert_at_need SOURCE TARGET ENCODER
//
// where ENCODER is a number of EncoderId.

#include "codecs/Transcoder.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc != 4)
        return EXIT_FAILURE;
    const auto encoder = static_cast<EncoderId>(std::atoi(argv[3]));
    const bool converted = convertFile(argv[1], argv[2], encoder, 0, nullptr);
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        return EXIT_FAILURE;
    std::printf("%s %s FFmpeg\n", converted ? "converted" : "refused",
                maps.readAll().contains("libavcodec") ? "with" : "without");
    return EXIT_SUCCESS;
}
