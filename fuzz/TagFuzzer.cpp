#include "fuzz/Quiet.h"
#include "fuzz/TagTargets.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t size)
{
    fuzz::beQuiet();
    fuzz::tags(TARVEL_FUZZ_EXTENSION, reinterpret_cast<const char*>(bytes), size);
    return 0;
}
