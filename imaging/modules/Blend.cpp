// Blend ("Composite Blend"): lays the second image over the first; the compositing operator.
// The work is in imaging/blend/blend.h; one image alone is laid over Colour.
//
// Values: Method (0 Alpha, 1 Paste, 2 Sub, 3 Add, 4 Remove, 5 psnr, 6
// prealpha, 7 multiple, 8 screen, 9 overlay, 10 tmask: how the second
// image combines with what lies under it), Colour (0xAARRGGBB, the ground
// under the first image), Foreground and Background Percentage (percent,
// -200 .. 200: every channel of the first, resp. second, image is scaled
// by it), Mask (one byte per channel; a 0 byte keeps the lower value) and
// Palette Method (indexed images: 0 Combine, 1 the first image's palette,
// 2 the second's). blend.h gives the rules in full.

#include "imaging/blend/blend.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

namespace {

// The first image entry is the background, the second the foreground.
// "Foreground Percentage" scales the first image and "Background
// Percentage" the second; the names stay as callers know them.
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 10, 0, "Method",
     "Alpha,Paste,Sub,Add,Remove,psnr,prealpha,multiple,screen,overlay,tmask"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour"},
    {kParamReal, -200.0, 200.0, 100.0, "Foreground Percentage"},
    {kParamReal, -200.0, 200.0, 100.0, "Background Percentage"},
    {kParamMask, 0, 0xFFFFFFFF, 0xFFFFFFFF, "Mask"},
    {kParamInteger, 0, 2, 0, "Palette Method", "Combine,Background,Foreground"},
};

constexpr ModuleDecl kDecl = {.magic = "BLND",
                              .name = "Blend",
                              .description = "Composite Blend",
                              .version = "1.23",
                              .flags = 2,
                              .images = 2,
                              .secondCount = 2,
                              .params = kParams};

TavixInfo* query(ModuleInstance* instance, int32_t) {
    return blend_query(instance);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    return blend_process(instance, result, pixels, rowbytes);
}

} // namespace

constexpr ModuleEntry mod_blend = module_entry<kDecl>(query, process);
