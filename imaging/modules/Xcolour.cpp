// Xcolour ("Xcolour Image"): masked colour search and replace. It works on
// the palette (through query output) and on 32-bit pixels (through
// process), so an indexed image changes through its palette alone.
//
// Values (32-bit 0xAARRGGBB words):
// - Search: the colour looked for. A colour matches when its bits under
//   SearchMask equal Search; Search is not masked itself, so a bit of
//   Search outside SearchMask makes it match nothing.
// - Replace: what a matching colour becomes, in the bits of ReplaceMask;
//   the other bits keep the colour's own.
// - SearchMask, ReplaceMask: which bits count (0x00FFFFFF: colour without
//   alpha; 0xFF000000: alpha alone). The descriptor offers 0, but a caller
//   that passes no masks gets 0xFFFFFFFF, whole colours.
// - SearchNot (0 or 1, default 0): 1 replaces every colour that does not
//   match instead; any value other than 0 and 1 replaces every colour.
// Example: Search 0xFFFF00FF, Replace 0x00000000, masks 0xFFFFFFFF turns
// opaque magenta into transparent black.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <cstring>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamMask, 0, 0xFFFFFFFF, 0, "Search"},     {kParamMask, 0, 0xFFFFFFFF, 0, "Replace"},
    {kParamMask, 0, 0xFFFFFFFF, 0, "SearchMask"}, {kParamMask, 0, 0xFFFFFFFF, 0, "ReplaceMask"},
    {kParamInteger, 0, 1, 0, "SearchNot"},
};

constexpr ModuleDecl kDecl = {.magic = "XCOL",
                              .name = "Xcolour",
                              .description = "Xcolour Image",
                              .version = "1.02",
                              .params = kParams};

struct Rule {
    uint32_t search;
    uint32_t replace;
    uint32_t searchMask;
    uint32_t replaceMask;
    uint32_t searchNot;
};

// A caller that passes no masks means whole colours, so the masks fall
// back to all ones here although the descriptor offers 0.
Rule readRule(const ModuleInstance* instance) {
    return Rule{module_value_uint(instance, 0, 0), module_value_uint(instance, 1, 0),
                module_value_uint(instance, 2, 0xFFFFFFFF),
                module_value_uint(instance, 3, 0xFFFFFFFF), module_value_uint(instance, 4, 0)};
}

// Search is compared unmasked, so bits of Search outside SearchMask make
// it match nothing. Any SearchNot other than 0 and 1 replaces every colour.
uint32_t apply(const Rule& rule, uint32_t colour) {
    uint32_t match = (colour & rule.searchMask) == rule.search ? 1 : 0;
    if ((match ^ rule.searchNot) == 0) return colour;
    return (colour & ~rule.replaceMask) | (rule.replace & rule.replaceMask);
}

void applyToPalette(const Rule& rule, TavixInfo* info) {
    for (TavixColour& entry : info->colours) {
        auto* at = reinterpret_cast<uint8_t*>(&entry);
        module_store_argb(at, apply(rule, module_load_argb(at)));
    }
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info) applyToPalette(readRule(instance), info);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    const Rule rule = readRule(instance);
    const bool trueColour = module_pixel_bytes(result) == 4;
    size_t length = static_cast<size_t>(module_row_length(in.info));
    for (int32_t y = 0; y < in.info->height; ++y) {
        const uint8_t* from = module_row(in, y);
        uint8_t* to = module_row(pixels, rowbytes, y);
        if (from != to) memcpy(to, from, length);
        if (!trueColour) continue;
        for (int32_t x = 0; x < in.info->width; ++x)
            module_store_argb(to + 4 * x, apply(rule, module_load_argb(to + 4 * x)));
    }
    return 1;
}

} // namespace

constexpr ModuleEntry mod_xcolour = module_entry<kDecl>(query, process);
