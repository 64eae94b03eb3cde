// libFuzzer target: the RefPack decoder and compressor.
#include "ShapeFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return shapeFuzzRefPack(data, size);
}
