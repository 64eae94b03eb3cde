#pragma once
// Sorting an indexed image's palette without changing its picture: the
// entries are put in a new order and every pixel's index follows its
// colour.

#include "imaging/module/module.h"

struct ModuleDecl;

#include <cstdint>

namespace palsort {

enum class Key : int32_t {
    Count = 0,        // most used first
    Argb = 1,         // by the 0xAARRGGBB word, smallest first
    Hvs = 2,          // by hue, then value (brightness), then saturation
    Whvs = 3,         // greys first by value, then colours as Hvs
    InverseCount = 4, // least used first
    Yuv = 5,          // by luma, then the blue and red differences
};

struct Request {
    Key key = Key::Count;
    bool forceBlack = false; // black (or the nearest to it) goes to index 0
    bool reverse = false;    // the whole order turned round
};

// Any value is taken: 0..5 as listed, anything else as Count.
Key key_from(int32_t value);

// The new order of the palette of `image`: order[new index] = old index.
// Only the entries the palette holds move; the rest stay in place.
void sort_order(const ImageEntry& image, const Request& request, uint8_t order[256]);

// Puts the record's palette in `order` (the forced black slot made black
// when it was unused).
void apply_to_palette(const ImageEntry& image, const Request& request, const uint8_t order[256],
                      TavixInfo* info);

// Writes the image's indices renumbered for `order` into `out` (8-bit,
// laid out with `rowbytes`; may be the input).
void renumber(const ImageEntry& image, const uint8_t order[256], void* out, int32_t rowbytes);

// The two halves of a palette-sorting module, for a request the module
// reads from its values: query output is the input's record with its
// palette sorted; process writes the renumbered indices (32-bit images,
// which have no palette, are copied).
TavixInfo* sorted_query(ModuleInstance* instance, const Request& request);
int sorted_process(const ModuleDecl& decl, ModuleInstance* instance, const Request& request,
                   const TavixInfo* result, void* pixels, int32_t rowbytes);

} // namespace palsort
