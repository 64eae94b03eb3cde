#pragma once
// The module framework: the records a module describes itself with, the
// five entry points every module has, the fixed table of modules and the
// operations callers use to find a module by name and run it.
//
// Callers never call a module's code directly. They select a module (by
// index or by name), then call the wrappers below, which act on the
// current module. Every block handed out here (descriptors, instances,
// image records, result pixels) comes from galloc and goes back with gfree.

#include "tavix/records.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// One 8-byte parameter value: an integer (also a colour or mask) in the
// first four bytes, or a double. Kept as raw bytes so the slot layout does
// not depend on union rules; use the accessors.
struct ModuleValue {
    uint8_t bytes[8];

    static ModuleValue ofInt(int32_t v) {
        ModuleValue slot{};
        memcpy(slot.bytes, &v, sizeof v);
        return slot;
    }
    static ModuleValue ofUint(uint32_t v) {
        ModuleValue slot{};
        memcpy(slot.bytes, &v, sizeof v);
        return slot;
    }
    static ModuleValue ofReal(double v) {
        ModuleValue slot{};
        memcpy(slot.bytes, &v, sizeof v);
        return slot;
    }
    int32_t asInt() const {
        int32_t v;
        memcpy(&v, bytes, sizeof v);
        return v;
    }
    uint32_t asUint() const { return static_cast<uint32_t>(asInt()); }
    static ModuleValue ofPointer(const void* p) {
        ModuleValue slot{};
        memcpy(slot.bytes, &p, sizeof p);
        return slot;
    }
    const void* asPointer() const {
        const void* p;
        memcpy(&p, bytes, sizeof p);
        return p;
    }
    double asReal() const {
        double v;
        memcpy(&v, bytes, sizeof v);
        return v;
    }
};
static_assert(sizeof(ModuleValue) == 8);

// Bits of ModuleParam::type. The low bits say how the value slots are
// encoded; the rest are hints for a generic parameter dialog.
enum : uint32_t {
    kParamInteger = 0x1,
    kParamReal = 0x2,
    kParamListHint = 0x200,    // choices shown as a list
    kParamMaskHint = 0x800,    // a 32-bit mask or colour word
    kParamColourHint = 0x1000, // with kParamMaskHint: a colour

    kParamChoice = kParamInteger | kParamListHint,                    // 0x201
    kParamMask = kParamInteger | kParamMaskHint,                      // 0x801
    kParamColour = kParamInteger | kParamMaskHint | kParamColourHint, // 0x1801
    // The slot holds the address of a zero-terminated text (null for none),
    // which the caller keeps alive while the module is open.
    kParamTextHint = 0x4000,
    kParamText = kParamInteger | kParamTextHint,
    // The slot holds the address of an object of the calling program's own
    // (null for none). Only code can fill it: a command line or a generic
    // parameter dialog has no object to give and must leave it null, since a
    // number a user types is no address.
    kParamHandleHint = 0x8000,
    kParamHandle = kParamInteger | kParamHandleHint,
};

constexpr int kModuleMaxParams = 35;
constexpr uint32_t kModuleDescriptorSize = 11328;
constexpr uint32_t kModuleInterfaceVersion = 109;

// One parameter of a module, 320 bytes.
struct ModuleParam {
    uint32_t type; // kParam* bits
    uint32_t pad;
    ModuleValue minimum;
    ModuleValue maximum; // 0xFFFFFFFF for a full colour or mask
    ModuleValue defaultValue;
    char name[32];
    char choices[256]; // "None,Horizontal,Vertical,Both": names of values 0, 1, 2 ...
};

static_assert(offsetof(ModuleParam, type) == 0);
static_assert(offsetof(ModuleParam, minimum) == 8);
static_assert(offsetof(ModuleParam, maximum) == 16);
static_assert(offsetof(ModuleParam, defaultValue) == 24);
static_assert(offsetof(ModuleParam, name) == 32);
static_assert(offsetof(ModuleParam, choices) == 64);
static_assert(sizeof(ModuleParam) == 320);

// A module's description of itself, 11328 bytes, zero-filled before use.
struct ModuleDescriptor {
    uint32_t magic;            // four characters, the first in the top byte ('FLIP')
    uint32_t size;             // kModuleDescriptorSize
    uint32_t interfaceVersion; // kModuleInterfaceVersion
    uint32_t flags;
    uint32_t minImages;
    uint32_t images;
    uint32_t reserved;
    uint32_t secondCount;
    char author[32];
    char version[8]; // "1.04"
    char name[16];   // the lookup key
    char description[32];
    uint32_t paramCount;
    uint32_t pad;
    ModuleParam params[kModuleMaxParams];
};

static_assert(offsetof(ModuleDescriptor, magic) == 0);
static_assert(offsetof(ModuleDescriptor, size) == 4);
static_assert(offsetof(ModuleDescriptor, interfaceVersion) == 8);
static_assert(offsetof(ModuleDescriptor, flags) == 12);
static_assert(offsetof(ModuleDescriptor, minImages) == 16);
static_assert(offsetof(ModuleDescriptor, images) == 20);
static_assert(offsetof(ModuleDescriptor, reserved) == 24);
static_assert(offsetof(ModuleDescriptor, secondCount) == 28);
static_assert(offsetof(ModuleDescriptor, author) == 32);
static_assert(offsetof(ModuleDescriptor, version) == 64);
static_assert(offsetof(ModuleDescriptor, name) == 72);
static_assert(offsetof(ModuleDescriptor, description) == 88);
static_assert(offsetof(ModuleDescriptor, paramCount) == 120);
static_assert(offsetof(ModuleDescriptor, params) == 128);
static_assert(sizeof(ModuleDescriptor) == kModuleDescriptorSize);

// One input image: its information record, its first pixel row and the
// byte distance from one row to the next. Pixels are one palette index per
// byte when info->bufferbpp is 8 or less, otherwise one 0xAARRGGBB word.
struct ImageEntry {
    const TavixInfo* info;
    const void* pixels;
    int32_t rowbytes;
};

// An open module. It points into the caller's image entries and values,
// which must outlive it. Modules that keep more state allocate a larger
// block that starts with this one.
struct ModuleInstance {
    int32_t state; // 1 while open
    int32_t reserved;
    int32_t imageCount;
    const ImageEntry* images;
    int32_t valueCount;
    const ModuleValue* values;
};

// The five entry points of a module, in table order.
using ModuleDescribeFn = ModuleDescriptor* (*)();
using ModuleOpenFn = int (*)(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                             int32_t valueCount, const ModuleValue* values);
using ModuleQueryFn = TavixInfo* (*)(ModuleInstance* instance, int32_t index);
using ModuleProcessFn = int (*)(ModuleInstance* instance, const TavixInfo* result, void* pixels,
                                int32_t rowbytes);
using ModuleCloseFn = int (*)(ModuleInstance* instance);

struct ModuleEntry {
    ModuleDescribeFn describe;
    ModuleOpenFn open;
    ModuleQueryFn query;
    ModuleProcessFn process;
    ModuleCloseFn close;
};

// ---- The table ---------------------------------------------------------

// Number of modules (entries before the closing null entry).
int32_t module_count();
// Makes a module current; an index outside 0 .. count-1 selects 0 (FNil).
// Returns the index now current.
int32_t module_select(int32_t index);
int32_t module_current();
// Selects the module whose short name equals `name` (ASCII letters compared
// without case) and returns its index. An unknown or empty name selects and
// returns 0, so it runs the identity filter.
int32_t module_find(const char* name);

// ---- Calls on the current module (a missing entry gives null or 0) -----

ModuleDescriptor* module_describe();
int module_open(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                int32_t valueCount, const ModuleValue* values);
TavixInfo* module_query(ModuleInstance* instance, int32_t index);
int module_process(ModuleInstance* instance, const TavixInfo* result, void* pixels,
                   int32_t rowbytes);
int module_close(ModuleInstance* instance);

// ---- Running a module --------------------------------------------------

// A result made by the library: record and pixels from galloc. The caller
// owns both and frees them with module_result_free (or gfree each).
struct ModuleResult {
    TavixInfo* info;
    uint8_t* pixels;
    int32_t rowbytes;
};
void module_result_free(ModuleResult* result);

// Bytes per pixel of an image's pixel buffer: 1 (palette index) or 4.
int32_t module_pixel_bytes(const TavixInfo* info);

// Allocates zeroed pixels for `info` (galloc) with each row padded to a
// multiple of `rowAlign` bytes (1 = no padding). 0 when the size is bad or
// memory is short.
int module_alloc_pixels(const TavixInfo* info, int32_t rowAlign, uint8_t** pixels,
                        int32_t* rowbytes);

// Runs module `index` over one drawing surface, writing over its pixels.
// 1 on success.
int module_run_in_place(int32_t index, const TavixInfo* info, void* pixels, int32_t rowbytes,
                        int32_t valueCount, const ModuleValue* values);

// Runs module `index` into a new image: asks its result record (output 0),
// allocates pixels with rows padded to `rowAlign`, processes and closes.
// On success fills `result` and returns 1; on failure frees everything.
int module_run_new(int32_t index, int32_t imageCount, const ImageEntry* images, int32_t valueCount,
                   const ModuleValue* values, int32_t rowAlign, ModuleResult* result);

// For modules that build on other modules: finds `name`, runs it into an
// unpadded new image as above and selects the previously current module
// again, whatever the outcome.
int module_run_named(const char* name, int32_t imageCount, const ImageEntry* images,
                     int32_t valueCount, const ModuleValue* values, ModuleResult* result);

// Encodes a text into a value slot by a parameter's type: a real for real
// parameters, otherwise an integer (decimal, 0x hex, negative) or, for a
// parameter with choices, one of the choice names (ASCII case ignored).
// `param` may be null for slots a module accepts beyond its descriptor; the
// text is then an integer when it reads as one, else a real. 1 on success.
int module_value_from_text(const ModuleParam* param, const char* text, ModuleValue* out);
