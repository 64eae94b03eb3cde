#include "imaging/module/table.h"

#include "imaging/modules/modules.h"

// Builds one table row from a module's namespace.
#define ZY_MODULE_ROW(ns)                                                                          \
    { ns::describe, ns::open, ns::query, ns::process, ns::close }

// The order is part of the library's interface: callers may hold indices.
const ModuleEntry g_moduleTable[] = {
    ZY_MODULE_ROW(mod_fnil),         // 0
    ZY_MODULE_ROW(mod_fyi),          // 1
    ZY_MODULE_ROW(mod_acenter),      // 2
    ZY_MODULE_ROW(mod_alphacomment), // 3
    ZY_MODULE_ROW(mod_acopy),        // 4
    ZY_MODULE_ROW(mod_blend),        // 5
    ZY_MODULE_ROW(mod_psnr),         // 6
    ZY_MODULE_ROW(mod_blur),         // 7
    ZY_MODULE_ROW(mod_fchanmap),     // 8
    ZY_MODULE_ROW(mod_chroma),       // 9
    ZY_MODULE_ROW(mod_colbal),       // 10
    ZY_MODULE_ROW(mod_contrast),     // 11
    ZY_MODULE_ROW(mod_creep),        // 12
    ZY_MODULE_ROW(mod_crop),         // 13
    ZY_MODULE_ROW(mod_csmap),        // 14
    ZY_MODULE_ROW(mod_deband),       // 15
    ZY_MODULE_ROW(mod_deinterlace),  // 16
    ZY_MODULE_ROW(mod_dilate),       // 17
    ZY_MODULE_ROW(mod_doubled),      // 18
    ZY_MODULE_ROW(mod_edge),         // 19
    ZY_MODULE_ROW(mod_erode),        // 20
    ZY_MODULE_ROW(mod_equalize),     // 21
    ZY_MODULE_ROW(mod_fill),         // 22
    ZY_MODULE_ROW(mod_halfsize),     // 23
    ZY_MODULE_ROW(mod_outline),      // 24
    ZY_MODULE_ROW(mod_flip),         // 25
    ZY_MODULE_ROW(mod_gamma),        // 26
    ZY_MODULE_ROW(mod_grb),          // 27
    ZY_MODULE_ROW(mod_grey),         // 28
    ZY_MODULE_ROW(mod_grid),         // 29
    ZY_MODULE_ROW(mod_hsl),          // 30
    ZY_MODULE_ROW(mod_hsv),          // 31
    ZY_MODULE_ROW(mod_invert),       // 32
    ZY_MODULE_ROW(mod_tedge),        // 33
    ZY_MODULE_ROW(mod_line),         // 34
    ZY_MODULE_ROW(mod_median),       // 35
    ZY_MODULE_ROW(mod_palsort),      // 36
    ZY_MODULE_ROW(mod_pixel),        // 37
    ZY_MODULE_ROW(mod_preten),       // 38
    ZY_MODULE_ROW(mod_psort),        // 39
    ZY_MODULE_ROW(mod_radfill),      // 40
    ZY_MODULE_ROW(mod_rect),         // 41
    ZY_MODULE_ROW(mod_remap),        // 42
    ZY_MODULE_ROW(mod_rot),          // 43
    ZY_MODULE_ROW(mod_rotate),       // 44
    ZY_MODULE_ROW(mod_safe),         // 45
    ZY_MODULE_ROW(mod_scale),        // 46
    ZY_MODULE_ROW(mod_shade),        // 47
    ZY_MODULE_ROW(mod_sharpen),      // 48
    ZY_MODULE_ROW(mod_shrink),       // 49
    ZY_MODULE_ROW(mod_size),         // 50
    ZY_MODULE_ROW(mod_smooth),       // 51
    ZY_MODULE_ROW(mod_stereo),       // 52
    ZY_MODULE_ROW(mod_embm),         // 53
    ZY_MODULE_ROW(mod_swap),         // 54
    ZY_MODULE_ROW(mod_texture),      // 55
    ZY_MODULE_ROW(mod_wrap),         // 56
    ZY_MODULE_ROW(mod_xcolour),      // 57
    ZY_MODULE_ROW(mod_zoom),         // 58
    ZY_MODULE_ROW(mod_screen),       // 59
    ZY_MODULE_ROW(mod_mipmont),      // 60
    ZY_MODULE_ROW(mod_warp),         // 61
    ZY_MODULE_ROW(mod_unembm),       // 62
    ZY_MODULE_ROW(mod_trans),        // 63
    ZY_MODULE_ROW(mod_drops),        // 64
    ZY_MODULE_ROW(mod_dot3),         // 65
    ZY_MODULE_ROW(mod_undot3),       // 66
    ZY_MODULE_ROW(mod_ftxmp),        // 67
    ZY_MODULE_ROW(mod_mipmap),       // 68
    ZY_MODULE_ROW(mod_photoshop),    // 69
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

#undef ZY_MODULE_ROW

static_assert(sizeof g_moduleTable / sizeof g_moduleTable[0] == 71,
              "70 modules and the closing entry");
