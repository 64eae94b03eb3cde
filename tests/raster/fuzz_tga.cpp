// libFuzzer entry for the Targa reader and writer (see RasterFuzz.h).
#include "RasterFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return fuzzRaster("tga", data, size);
}
