// alphacomment ("Imbed comment in alpha"): hides the comment text in the alpha channel, or reads it
// back.
//
// The descriptor is complete; the pixel work is not written yet, so open
// refuses and no caller ever holds an instance of this module. To add it,
// follow docs/modules.md: open with module_open_instance, then fill in
// query and process.

#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace mod_alphacomment {

namespace {

// The list names "add" and "extract" run together into one word, and
// dialogs show it as written; the maximum follows the one name the list
// holds, while the module itself takes 1 as extract.
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 0, 0, "", "addextract"},
};

constexpr ModuleDecl kDecl = {.magic = "ACMT",
                              .name = "alphacomment",
                              .description = "Imbed comment in alpha",
                              .version = "1.00",
                              .params = kParams};

} // namespace

ModuleDescriptor* describe() {
    return module_build_descriptor(kDecl);
}

int open(ModuleInstance** out, int32_t, const ImageEntry*, int32_t, const ModuleValue*) {
    return module_unavailable(kDecl, out);
}

TavixInfo* query(ModuleInstance*, int32_t) {
    return nullptr;
}

int process(ModuleInstance*, const TavixInfo*, void*, int32_t) {
    return 0;
}

int close(ModuleInstance* instance) {
    return module_close_instance(instance);
}

} // namespace mod_alphacomment
