// Remap ("Remap 32 to 8"): reduces an image to 8 bits per pixel with a
// palette made by a colour quantizer (imaging/quant), or onto the palette
// its record already holds.
//
// The descriptor lists no parameters; the module reads these slots when
// they are passed (fallback in brackets): 0 quantizer index [1, Wu],
// 1 number of colours [256], 2 dither [0: none; 1 Floyd-Steinberg,
// 2 Burkes, 3 Stucki], 3 start colour [0], 4 keep palette [0]: 1 maps
// onto entries start .. start + colours - 1 of the record's own palette
// instead of making one. Indexed inputs are expanded through their
// palette first. The work is done in open; query and process hand out the
// result.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/quant/indexed.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "REMP", .name = "Remap", .description = "Remap 32 to 8", .version = "1.04"};

struct RemapInstance {
    ModuleInstance base;
    ModuleResult made;
};

bool reduce(const ModuleInstance* instance, ModuleResult* out) {
    const ImageEntry& in = instance->images[0];
    QuantIndexedSettings s;
    s.method = module_value_int(instance, 0, 1);
    s.start = std::clamp(module_value_int(instance, 3, 0), 0, 255);
    s.count = std::clamp(module_value_int(instance, 1, 256), 1, 256 - s.start);
    s.dither = module_value_int(instance, 2, 0);
    uint32_t palette[256] = {};
    uint8_t used[256] = {};
    if (module_value_int(instance, 4, 0) == 1) {
        memcpy(palette, in.info->colours, sizeof palette);
        memset(used + s.start, 1, static_cast<size_t>(s.count));
    } else if (!quant_build_palette(s, &in, 1, palette, used)) {
        gprintf("Remap - the quantizer made no palette\n");
        return false;
    }
    return quant_make_indexed(in, palette, used, s, out);
}

int openInstance(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                 int32_t valueCount, const ModuleValue* values) {
    if (!module_open_instance(kDecl, out, imageCount, images, valueCount, values, 1,
                              static_cast<int32_t>(sizeof(RemapInstance))))
        return 0;
    auto* r = reinterpret_cast<RemapInstance*>(*out);
    if (!images[0].pixels || !reduce(*out, &r->made)) {
        module_close_instance(*out);
        *out = nullptr;
        return 0;
    }
    return 1;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(reinterpret_cast<RemapInstance*>(instance)->made.info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    const ModuleResult& made = reinterpret_cast<RemapInstance*>(instance)->made;
    const ImageEntry from{made.info, made.pixels, made.rowbytes};
    if (!pixels || rowbytes < made.info->width ||
        (result && (result->width != made.info->width || result->height != made.info->height))) {
        gprintf("Remap - the result must be %d x %d at 8 bits\n", made.info->width,
                made.info->height);
        return 0;
    }
    for (int32_t y = 0; y < made.info->height; ++y)
        memcpy(module_row(pixels, rowbytes, y), module_row(from, y),
               static_cast<size_t>(made.info->width));
    return 1;
}

int closeInstance(ModuleInstance* instance) {
    if (!instance) return 0;
    module_result_free(&reinterpret_cast<RemapInstance*>(instance)->made);
    return module_close_instance(instance);
}

} // namespace

constexpr ModuleEntry mod_remap = {.describe = module_describer<kDecl>,
                                   .open = openInstance,
                                   .query = query,
                                   .process = process,
                                   .close = closeInstance};
