#pragma once
// Writing a layout plug-in for Zy.
//
// Tools > VRAM Tools > Custom Properties hands each selected image to a shared
// library named liblayout.so, which Zy looks for beside its own program
// first and then on the library search path (LD_LIBRARY_PATH, the system
// folders). The library exports the two functions below with C linkage.
// Zy loads it for each image and releases it afterwards, so keep no state
// between calls.
//
// For each image Zy fills `in` (the image's record, its first pixel row and
// the byte distance between rows; read-only), zeroes `out` and calls
// EditLayoutImage(&in, &out). The plug-in fills `out` with an image of its
// own: a record (TavixInfo, at least sizeof(TavixInfo) bytes, its `size`
// field saying how many) and pixel rows in the same form as the input
// (bufferbpp 8 or less: one palette index per byte; otherwise one
// 0xAARRGGBB word per pixel). Zy copies the result into the document and
// then calls FreeLayoutImage(&out), which releases whatever `out` points to.
// Leave `out` zeroed to keep the image unchanged. The result value of
// EditLayoutImage is not used.
//
// A C++ exception thrown out of either function is caught: Zy says "There
// is an error in your layout DLL.  Contact the author of the DLL." and
// keeps the image as it was. Build with -fPIC -shared; see
// plugins/border/Border.cpp for a complete plug-in.

#include "tavix/records.h"

#include <cstdint>

struct LayoutImage {
    TavixInfo* info;  // the image record
    void* pixels;     // the first pixel row
    int32_t rowbytes; // bytes from one row to the next
};

#define ZY_LAYOUT_EXPORT extern "C" __attribute__((visibility("default")))

using EditLayoutImageFn = int (*)(const LayoutImage* in, LayoutImage* out);
using FreeLayoutImageFn = void (*)(LayoutImage* out);
