// libFuzzer entry for the PNG reader and writer (see RasterFuzz.h).
#include "RasterFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return fuzzRaster("png", data, size);
}
