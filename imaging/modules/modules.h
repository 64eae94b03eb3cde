#pragma once
// The entry points of every module, one namespace per module, in table
// order. Each module file defines the five functions of its namespace.

#include "imaging/module/module.h"

// Declares the five entry points of one module.
#define ZY_MODULE_ENTRY_POINTS(ns)                                                                 \
    namespace ns {                                                                                 \
    ModuleDescriptor* describe();                                                                  \
    int open(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,                   \
             int32_t valueCount, const ModuleValue* values);                                       \
    TavixInfo* query(ModuleInstance* instance, int32_t index);                                     \
    int process(ModuleInstance* instance, const TavixInfo* result, void* pixels,                   \
                int32_t rowbytes);                                                                 \
    int close(ModuleInstance* instance);                                                           \
    }

ZY_MODULE_ENTRY_POINTS(mod_fnil)
ZY_MODULE_ENTRY_POINTS(mod_fyi)
ZY_MODULE_ENTRY_POINTS(mod_acenter)
ZY_MODULE_ENTRY_POINTS(mod_alphacomment)
ZY_MODULE_ENTRY_POINTS(mod_acopy)
ZY_MODULE_ENTRY_POINTS(mod_blend)
ZY_MODULE_ENTRY_POINTS(mod_psnr)
ZY_MODULE_ENTRY_POINTS(mod_blur)
ZY_MODULE_ENTRY_POINTS(mod_fchanmap)
ZY_MODULE_ENTRY_POINTS(mod_chroma)
ZY_MODULE_ENTRY_POINTS(mod_colbal)
ZY_MODULE_ENTRY_POINTS(mod_contrast)
ZY_MODULE_ENTRY_POINTS(mod_creep)
ZY_MODULE_ENTRY_POINTS(mod_crop)
ZY_MODULE_ENTRY_POINTS(mod_csmap)
ZY_MODULE_ENTRY_POINTS(mod_deband)
ZY_MODULE_ENTRY_POINTS(mod_deinterlace)
ZY_MODULE_ENTRY_POINTS(mod_dilate)
ZY_MODULE_ENTRY_POINTS(mod_doubled)
ZY_MODULE_ENTRY_POINTS(mod_edge)
ZY_MODULE_ENTRY_POINTS(mod_erode)
ZY_MODULE_ENTRY_POINTS(mod_equalize)
ZY_MODULE_ENTRY_POINTS(mod_fill)
ZY_MODULE_ENTRY_POINTS(mod_halfsize)
ZY_MODULE_ENTRY_POINTS(mod_outline)
ZY_MODULE_ENTRY_POINTS(mod_flip)
ZY_MODULE_ENTRY_POINTS(mod_gamma)
ZY_MODULE_ENTRY_POINTS(mod_grb)
ZY_MODULE_ENTRY_POINTS(mod_grey)
ZY_MODULE_ENTRY_POINTS(mod_grid)
ZY_MODULE_ENTRY_POINTS(mod_hsl)
ZY_MODULE_ENTRY_POINTS(mod_hsv)
ZY_MODULE_ENTRY_POINTS(mod_invert)
ZY_MODULE_ENTRY_POINTS(mod_tedge)
ZY_MODULE_ENTRY_POINTS(mod_line)
ZY_MODULE_ENTRY_POINTS(mod_median)
ZY_MODULE_ENTRY_POINTS(mod_palsort)
ZY_MODULE_ENTRY_POINTS(mod_pixel)
ZY_MODULE_ENTRY_POINTS(mod_preten)
ZY_MODULE_ENTRY_POINTS(mod_psort)
ZY_MODULE_ENTRY_POINTS(mod_radfill)
ZY_MODULE_ENTRY_POINTS(mod_rect)
ZY_MODULE_ENTRY_POINTS(mod_remap)
ZY_MODULE_ENTRY_POINTS(mod_rot)
ZY_MODULE_ENTRY_POINTS(mod_rotate)
ZY_MODULE_ENTRY_POINTS(mod_safe)
ZY_MODULE_ENTRY_POINTS(mod_scale)
ZY_MODULE_ENTRY_POINTS(mod_shade)
ZY_MODULE_ENTRY_POINTS(mod_sharpen)
ZY_MODULE_ENTRY_POINTS(mod_shrink)
ZY_MODULE_ENTRY_POINTS(mod_size)
ZY_MODULE_ENTRY_POINTS(mod_smooth)
ZY_MODULE_ENTRY_POINTS(mod_stereo)
ZY_MODULE_ENTRY_POINTS(mod_embm)
ZY_MODULE_ENTRY_POINTS(mod_swap)
ZY_MODULE_ENTRY_POINTS(mod_texture)
ZY_MODULE_ENTRY_POINTS(mod_wrap)
ZY_MODULE_ENTRY_POINTS(mod_xcolour)
ZY_MODULE_ENTRY_POINTS(mod_zoom)
ZY_MODULE_ENTRY_POINTS(mod_screen)
ZY_MODULE_ENTRY_POINTS(mod_mipmont)
ZY_MODULE_ENTRY_POINTS(mod_warp)
ZY_MODULE_ENTRY_POINTS(mod_unembm)
ZY_MODULE_ENTRY_POINTS(mod_trans)
ZY_MODULE_ENTRY_POINTS(mod_drops)
ZY_MODULE_ENTRY_POINTS(mod_dot3)
ZY_MODULE_ENTRY_POINTS(mod_undot3)
ZY_MODULE_ENTRY_POINTS(mod_ftxmp)
ZY_MODULE_ENTRY_POINTS(mod_mipmap)
ZY_MODULE_ENTRY_POINTS(mod_photoshop)

#undef ZY_MODULE_ENTRY_POINTS
