#pragma once
// The entry functions the fuzz targets and the crashers replay share.
// Both return 0 and must never crash, hang or leak on any input; a broken
// invariant (for example a compressor round trip that changes the data)
// aborts, so the fuzzer reports it.

#include <cstddef>
#include <cstdint>

// Every shape driver opens the input, describes and decodes each frame,
// then writes the readable frames back and reads the result again.
int shapeFuzzReader(const uint8_t* data, size_t size);

// The RefPack decoder on the input; whatever decodes is compressed again
// and must decode to the same bytes, and so must the input itself.
int shapeFuzzRefPack(const uint8_t* data, size_t size);
