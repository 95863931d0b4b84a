// The fuzzer of one target that the build names.

#include "fuzz/DiscTargets.h"
#include "fuzz/ParserTargets.h"
#include "fuzz/Quiet.h"
#include "fuzz/TagTargets.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t size)
{
    fuzz::beQuiet();
    fuzz::TARVEL_FUZZ_TARGET(reinterpret_cast<const char*>(bytes), size);
    return 0;
}
