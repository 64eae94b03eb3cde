// PalSort ("Palette Sort"): sorts an indexed image's palette and
// renumbers its pixels so the picture stays exactly as it was.
//
// Values: Method, the order: Count (most used colours first), ARGB (by
// the colour word, smallest first), HVS (by hue, then brightness, then
// saturation), WHVS (greys first, darkest to lightest, then the colours as
// HVS), ICOUNT (least used first), YUV (by luma, then the blue and red
// differences); ties keep their old order. ForceBlack (No, Yes): put black
// at index 0; a palette without black gives up an unused entry for it, or,
// when every entry is used, puts its darkest colour there. Only the
// entries the palette holds move. 32-bit images pass unchanged.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/palsort/sort.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 5, 0, "Method", "Count,ARGB,HVS,WHVS,ICOUNT,YUV"},
    {kParamChoice, 0, 1, 0, "ForceBlack", "No,Yes"},
};

constexpr ModuleDecl kDecl = {.magic = "PSRT",
                              .name = "PalSort",
                              .description = "Palette Sort",
                              .version = "1.08",
                              .params = kParams};

palsort::Request request(const ModuleInstance* instance) {
    return {palsort::key_from(module_value_int(instance, kDecl, 0)),
            module_value_int(instance, kDecl, 1) != 0, false};
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return palsort::sorted_query(instance, request(instance));
}

// 32-bit images have no palette to sort: their pixels are copied.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    return palsort::sorted_process(kDecl, instance, request(instance), result, pixels, rowbytes);
}

} // namespace

constexpr ModuleEntry mod_palsort = module_entry<kDecl>(query, process);
