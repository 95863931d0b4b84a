#include "fuzz/ParserTargets.h"

#include "fuzz/Quiet.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t size)
{
    fuzz::beQuiet();
    fuzz::dbar(reinterpret_cast<const char*>(bytes), size);
    return 0;
}
