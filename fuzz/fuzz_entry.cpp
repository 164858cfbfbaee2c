// libFuzzer target for one entry point, named by FUZZ_ENTRY at build time.
#include "fuzz_calls.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzcalls::Run(FUZZ_ENTRY, data, size);
    return 0;
}
