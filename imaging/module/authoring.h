#pragma once
// Helpers for writing a module: a declarative form of the descriptor, the
// reading of parameter values with their defaults, the instance and record
// bookkeeping every module repeats, and row access. See docs/modules.md.

#include "imaging/module/module.h"

#include <cstdint>
#include <span>

// One parameter as a module declares it. Integers (also colours and masks)
// are given as doubles too: every 32-bit value, signed or unsigned, is exact
// in a double, and both 0xFFFFFFFF and -1 land in the slot as 0xFFFFFFFF.
struct ModuleParamDecl {
    uint32_t type; // kParamInteger, kParamReal, kParamChoice, kParamMask, kParamColour ...
    double minimum;
    double maximum;
    double defaultValue;
    const char* name;
    const char* choices = "";
};

// Everything a descriptor holds, in one constant per module.
struct ModuleDecl {
    const char* magic; // up to four characters; "" for none
    const char* name;
    const char* description;
    const char* version;
    uint32_t flags = 3;
    uint32_t images = 1;
    uint32_t secondCount = 0;
    std::span<const ModuleParamDecl> params = {};
};

constexpr double kIntMin = -2147483648.0;
constexpr double kIntMax = 2147483647.0;

// The display-only author text every descriptor carries.
extern const char kModuleAuthor[];

// The magic word of a code of up to four characters, first character in
// the top byte ("FLIP" -> 0x464C4950, "HSL" -> 0x0048534C).
uint32_t module_magic(const char* code);

// A new zero-filled descriptor filled from `decl`, or null when memory is
// short. At most kModuleMaxParams records are written.
ModuleDescriptor* module_build_descriptor(const ModuleDecl& decl);

// ---- Parameter values ----------------------------------------------------

// Value slot `index` as passed by the caller, or `fallback` when the caller
// passed fewer slots.
int32_t module_value_int(const ModuleInstance* instance, int32_t index, int32_t fallback);
uint32_t module_value_uint(const ModuleInstance* instance, int32_t index, uint32_t fallback);
double module_value_real(const ModuleInstance* instance, int32_t index, double fallback);

// The same, falling back to the default of parameter `index` of `decl`
// (0 when the module declares no such parameter).
int32_t module_value_int(const ModuleInstance* instance, const ModuleDecl& decl, int32_t index);
uint32_t module_value_uint(const ModuleInstance* instance, const ModuleDecl& decl, int32_t index);
double module_value_real(const ModuleInstance* instance, const ModuleDecl& decl, int32_t index);

// A number in slot `index` that may have been passed either way, as an
// integer or as a real (for slots beyond the descriptor, and for integer
// parameters that callers also pass as reals). An integer slot leaves its
// upper four bytes zero, which no real a caller means can have (that
// pattern is a denormal below 1e-300). `fallback` when not passed.
double module_value_number(const ModuleInstance* instance, int32_t index, double fallback);

// ---- Instances ----------------------------------------------------------

// The usual open: checks that at least `minImages` entries with usable
// records are given, allocates an instance of `instanceSize` bytes (at
// least sizeof(ModuleInstance), zero-filled), fills the six words and
// stores it in *out. 1 on success; on failure *out is null and 0 returned.
int module_open_instance(const ModuleDecl& decl, ModuleInstance** out, int32_t imageCount,
                         const ImageEntry* images, int32_t valueCount, const ModuleValue* values,
                         int32_t minImages = 1,
                         int32_t instanceSize = static_cast<int32_t>(sizeof(ModuleInstance)));

// The usual close: frees the instance. 0 for a null instance.
int module_close_instance(ModuleInstance* instance);

// True when `instance` is an open instance with at least one image.
bool module_instance_ok(const ModuleInstance* instance);

// ---- Records and rows --------------------------------------------------------

// A galloc copy of `info`, `info->size` bytes long (a record may carry a
// tail beyond TavixInfo). Null, with one line printed for a bad record,
// when the record is unusable or memory is short.
TavixInfo* module_copy_info(const TavixInfo* info);

// True when the record has a sane size and dimensions whose rows and whole
// image fit in 32-bit byte counts.
bool module_info_ok(const TavixInfo* info);

// Bytes of pixel data in one row (width x bytes per pixel).
int32_t module_row_length(const TavixInfo* info);

// Number of hot spots a record really holds (numhotspots clamped to 0..1024).
int32_t module_hotspot_count(const TavixInfo* info);

// Checks a process call of a module whose result has the first input's
// width, height and pixel size: an open instance, usable input pixels and
// a result buffer whose rows hold a whole row. Prints one line naming the
// module and returns false otherwise.
bool module_check_same_shape(const ModuleDecl& decl, const ModuleInstance* instance,
                             const TavixInfo* result, const void* pixels, int32_t rowbytes);
// The same checks for a module whose result may differ from its input in
// width and height (but not in pixel depth).
bool module_check_resized(const ModuleDecl& decl, const ModuleInstance* instance,
                          const TavixInfo* result, const void* pixels, int32_t rowbytes);

inline const uint8_t* module_row(const ImageEntry& image, int32_t y) {
    return static_cast<const uint8_t*>(image.pixels) + static_cast<ptrdiff_t>(y) * image.rowbytes;
}

inline uint8_t* module_row(void* pixels, int32_t rowbytes, int32_t y) {
    return static_cast<uint8_t*>(pixels) + static_cast<ptrdiff_t>(y) * rowbytes;
}

// A 32-bit pixel or palette entry as one 0xAARRGGBB word and back.
inline uint32_t module_load_argb(const uint8_t* at) {
    uint32_t v;
    memcpy(&v, at, sizeof v);
    return v;
}
inline void module_store_argb(uint8_t* at, uint32_t v) {
    memcpy(at, &v, sizeof v);
}

// ---- Entry records -----------------------------------------------------
//
// Each module file exports one constant entry record (declared in
// imaging/modules/modules.h, listed in imaging/module/table.cpp). Most
// modules describe themselves from their ModuleDecl, open the plain
// six-word instance and close it again; these templates are those three
// entry points, so a module writes only its query and process:
//
//     constexpr ModuleEntry mod_flip = module_entry<kDecl>(query, process);
//
// A module that keeps state in a larger instance fills the record itself
// with its own open and close beside module_describer<kDecl>.

template <const ModuleDecl& Decl> ModuleDescriptor* module_describer() {
    return module_build_descriptor(Decl);
}

template <const ModuleDecl& Decl>
int module_plain_open(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                      int32_t valueCount, const ModuleValue* values) {
    return module_open_instance(Decl, out, imageCount, images, valueCount, values);
}

// The entry of a module with the usual describe, open and close.
template <const ModuleDecl& Decl>
constexpr ModuleEntry module_entry(ModuleQueryFn query, ModuleProcessFn process) {
    return {module_describer<Decl>, module_plain_open<Decl>, query, process, module_close_instance};
}
