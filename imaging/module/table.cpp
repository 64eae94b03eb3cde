#include "imaging/module/table.h"

#include "imaging/modules/modules.h"

// The order is part of the library's interface: callers may hold indices.
const ModuleEntry* const g_moduleTable[] = {
    &mod_fnil,         // 0
    &mod_fyi,          // 1
    &mod_acenter,      // 2
    &mod_alphacomment, // 3
    &mod_acopy,        // 4
    &mod_blend,        // 5
    &mod_psnr,         // 6
    &mod_blur,         // 7
    &mod_fchanmap,     // 8
    &mod_chroma,       // 9
    &mod_colbal,       // 10
    &mod_contrast,     // 11
    &mod_creep,        // 12
    &mod_crop,         // 13
    &mod_csmap,        // 14
    &mod_deband,       // 15
    &mod_deinterlace,  // 16
    &mod_dilate,       // 17
    &mod_doubled,      // 18
    &mod_edge,         // 19
    &mod_erode,        // 20
    &mod_equalize,     // 21
    &mod_fill,         // 22
    &mod_halfsize,     // 23
    &mod_outline,      // 24
    &mod_flip,         // 25
    &mod_gamma,        // 26
    &mod_grb,          // 27
    &mod_grey,         // 28
    &mod_grid,         // 29
    &mod_hsl,          // 30
    &mod_hsv,          // 31
    &mod_invert,       // 32
    &mod_tedge,        // 33
    &mod_line,         // 34
    &mod_median,       // 35
    &mod_palsort,      // 36
    &mod_pixel,        // 37
    &mod_preten,       // 38
    &mod_psort,        // 39
    &mod_radfill,      // 40
    &mod_rect,         // 41
    &mod_remap,        // 42
    &mod_rot,          // 43
    &mod_rotate,       // 44
    &mod_safe,         // 45
    &mod_scale,        // 46
    &mod_shade,        // 47
    &mod_sharpen,      // 48
    &mod_shrink,       // 49
    &mod_size,         // 50
    &mod_smooth,       // 51
    &mod_stereo,       // 52
    &mod_embm,         // 53
    &mod_swap,         // 54
    &mod_texture,      // 55
    &mod_wrap,         // 56
    &mod_xcolour,      // 57
    &mod_zoom,         // 58
    &mod_screen,       // 59
    &mod_mipmont,      // 60
    &mod_warp,         // 61
    &mod_unembm,       // 62
    &mod_trans,        // 63
    &mod_drops,        // 64
    &mod_dot3,         // 65
    &mod_undot3,       // 66
    &mod_ftxmp,        // 67
    &mod_mipmap,       // 68
    &mod_photoshop,    // 69
    nullptr,
};

static_assert(sizeof g_moduleTable / sizeof g_moduleTable[0] == 71,
              "70 modules and the closing entry");
