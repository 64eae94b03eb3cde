// PSort ("Palette Sort"): PalSort with its choices packed in one word.
//
// Values: SortParms, bits 0-7 the method as PalSort's (0 Count, 1 ARGB,
// 2 HVS, 3 WHVS, 4 ICOUNT, 5 YUV), bit 8 ForceBlack, bit 9 the order turned
// round (applied before black is forced). The picture never changes; 32-bit
// images pass unchanged.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/palsort/sort.h"

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, kIntMin, kIntMax, 0, "SortParms"},
};

constexpr ModuleDecl kDecl = {.magic = "PSRT",
                              .name = "PSort",
                              .description = "Palette Sort",
                              .version = "1.00",
                              .params = kParams};

palsort::Request request(const ModuleInstance* instance) {
    auto parms = module_value_uint(instance, kDecl, 0);
    return {palsort::key_from(static_cast<int32_t>(parms & 0xFFu)), (parms & 0x100u) != 0,
            (parms & 0x200u) != 0};
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return palsort::sorted_query(instance, request(instance));
}

// 32-bit images have no palette to sort: their pixels are copied.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    return palsort::sorted_process(kDecl, instance, request(instance), result, pixels, rowbytes);
}

} // namespace

constexpr ModuleEntry mod_psort = module_entry<kDecl>(query, process);
