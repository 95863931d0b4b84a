// Decodes one file to WAV in a program that holds one decoder, which the build
// names, as the tool does that it is measured against.

#include "ChildRun.h"
#include TARVEL_DECODER_HEADER
#include "codecs/pcm/WavEncoder.h"

#include <cstdio>

namespace {

bool decode(const char* source, const char* target)
{
    TARVEL_DECODER decoder;
    WavEncoder encoder;
    if (!decoder.open(source) || !encoder.open(target, decoder.format()))
        return false;
    while (const std::optional<AudioBlock> block = decoder.read()) {
        if (!encoder.write(*block))
            return false;
    }
    return encoder.close();
}

} // namespace

int main(int argc, char** argv)
{
    const double before = ownProcessorSeconds();
    if (argc != 3 || !decode(argv[1], argv[2]))
        return 1;
    std::printf("%.6f\n", ownProcessorSeconds() - before);
    return 0;
}
