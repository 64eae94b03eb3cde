#pragma once
// The body shared by the Targa, PNG and bitmap fuzz targets and by the
// replay of broken files in the normal test run.

#include <cstddef>
#include <cstdint>

// Feeds the bytes to the driver with that short name ("tga", "png", "bmp")
// the way the library's entry points do: detect, open, describe, decode.
// A frame that decodes is written with the same driver and read back; the
// second reading must give the same frame. Aborts (a finding) on a leaked
// block, on a frame that contradicts its record, or on a round trip that
// changes pixels. For "png" the chunk checksums are made right first, so a
// fuzzer's mutations reach the chunk parsers instead of dying at the CRC.
int fuzzRaster(const char* driver, const uint8_t* data, size_t size);
