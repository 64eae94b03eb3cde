// libFuzzer target: the shape readers and writers on arbitrary files.
#include "ShapeFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return shapeFuzzReader(data, size);
}
