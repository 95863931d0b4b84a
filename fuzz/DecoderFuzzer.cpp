#include "fuzz/DecoderTarget.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t size)
{
    fuzz::decoder(TARVEL_FUZZ_EXTENSION, reinterpret_cast<const char*>(bytes), size);
    return 0;
}
