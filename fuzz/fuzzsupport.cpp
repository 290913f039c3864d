// The start-up every fuzz target shares: libFuzzer calls it once before the first input.
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::ensureApplication();
    return 0;
}
