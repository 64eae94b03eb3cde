#pragma once
// The texture-page packer: places rectangles of given sizes into one area
// of texture memory without overlap.
//
// The packer keeps the free space as a list of maximal free rectangles
// (MaxRects) and at each step places, among all shapes still waiting, the
// one whose best free rectangle leaves the shortest leftover side ("best
// short side fit"; ties go to the longer leftover side, then to the shape
// given first). Each shape goes to the top-left corner of its rectangle.
//
// Texture pages tile memory from (0, 0): page (i, j) covers
// [i * pageWidth, (i + 1) * pageWidth) x [j * pageHeight, (j + 1) * pageHeight),
// whatever the area's origin. With kPackRespectPages no shape crosses a page
// boundary. With kPackCheckEdges as well, no shape touches the last column
// or the last row of its page: 8-bit texture coordinates reach 255 but not
// 256, so a shape that ends on a page's far edge cannot be addressed.
//
// Shapes that do not fit are put side by side along a fallback row
// (x from 0, at y = kPackFallbackY) and reported as not fitting.
//
// Plain procedural code: no exceptions, all memory through galloc.

#include <cstdint>

// Where shapes that do not fit go: the row below the first 512 lines of
// video memory.
constexpr int32_t kPackFallbackY = 512;

enum : int32_t {
    kPackRespectPages = 0x1, // no shape crosses a page boundary
    kPackCheckEdges = 0x2,   // with pages: keep off each page's last column and row
    kPackRotate = 0x4,       // shapes may be turned by 90 degrees
};

struct PackArea {
    int32_t x, y, width, height;
    int32_t pageWidth, pageHeight; // 0: no pages
    int32_t flags;                 // kPack* bits
};

struct PackShape {
    int32_t width, height;
};

struct PackPlace {
    int32_t x, y;    // the top-left corner the shape goes to
    int32_t rotated; // 1: turned by 90 degrees, so it covers height x width
    int32_t fits;    // 0: it did not fit and went to the fallback row
};

// Places `count` shapes into `area`; out[i] tells where shape i goes.
// Returns the number of shapes that fit, or -1 when memory ran out (out is
// then left untouched). A shape with no area fits at the area's corner.
int32_t pack_shapes(const PackArea* area, const PackShape* shapes, int32_t count, PackPlace* out);
