#pragma once
// The composite blend: lays a foreground image over a background image.
// Both are placed by their worksheet position (the record's default point)
// and the result covers the union of the two rectangles. The Blend module
// (imaging/modules/Blend.cpp) is a thin door to these functions.
//
// Values, by slot: 0 Method (0 Alpha, 1 Paste, 2 Sub, 3 Add, 4 Remove,
// 5 psnr, 6 prealpha, 7 multiple, 8 screen, 9 overlay, 10 tmask; anything
// else blends as Alpha), 1 Colour (the ground the first image is laid on),
// 2 "Foreground Percentage" (scales the first image), 3 "Background
// Percentage" (scales the second), 4 Mask (one byte per channel: zero keeps
// the lower value), 5 Palette Method (0 Combine, 1 Background, 2
// Foreground). Values not passed take 0, 0, 100, 100, 0xFFFFFFFF, 0.
//
// The result is built in two layers: the first image over Colour (Alpha
// when Method is 0, else Paste, with slot 2 and a full mask), then the
// second image over that with Method, slot 3 and Mask. Both images must
// have the same pixel size (palette indices or ARGB words).

#include "imaging/module/module.h"

// The result record: the first image's record moved to the union of both
// rectangles, its points shifted to stay where they were, and its palette
// merged by Palette Method. Null (one line printed) on a bad record or
// when memory is short.
TavixInfo* blend_query(const ModuleInstance* instance);

// Fills `pixels` (rows of `rowbytes`) for `result`, which must have the
// size blend_query gave. 1 on success; 0 with one line printed otherwise.
int blend_process(const ModuleInstance* instance, const TavixInfo* result, void* pixels,
                  int32_t rowbytes);

// ---- Signal-to-noise ratios ----------------------------------------------
// Every process call measures how far the second image is from the first
// layer: the mean squared channel difference and the mean squared
// luminance difference, as peak signal-to-noise ratios in decibels (at most
// 128 dB, reached by identical images). The "total" ratios cover every
// call since the last reset: a caller comparing a series of images resets
// them before the first call and reads them after the last.

struct BlendPsnr {
    double channel;        // this call, over the colour channels (and alpha when compared)
    double luminance;      // this call, over the luminance
    double totalChannel;   // all calls since the reset
    double totalLuminance; // all calls since the reset
};

// Clears the running totals and sets all four ratios to 128 dB.
void blend_psnr_reset();
// The ratios of the last call and of all calls since the reset.
BlendPsnr blend_psnr_read();
