#pragma once
// The application's numbered current colours, the colours the commands
// fill and draw with, kept in the settings store (section
// "CCurrentColours") so that every window and every batch run sees the
// same ones. The colour editor and the toolbar's swatches edit them.
//
// There are kCount of them, numbered 0 to kCount - 1. Number 0 is the
// foreground (the colour of outlines and creep); number 4 is the fill
// colour that rotation, canvas and clean-edge commands put into the area
// they uncover, and it doubles as the background. Each colour is kept
// twice, as a palette index for indexed images and as an 0xAARRGGBB value
// for deeper ones, because a command picks the one that suits each image.
//
// The foreground and the fill keep the value names they have always had
// ("m_Foreground", "m_Background" and their "...Index" partners); the
// others are "m_Colour<n>" and "m_Colour<n>Index".

#include "app/doc/UserInterface.h"

#include <string>

class CProfile;

struct CCurrentColours {
    static constexpr int kCount = 8;
    static constexpr int kForegroundNumber = 0;
    // The current colour number the fill colours are taken from.
    static constexpr int kFillNumber = 4;

    CCurrentColours();

    CCurrentColour m_Colours[kCount];

    static CCurrentColours Read(const CProfile& profile);
    void Write(CProfile& profile) const;

    // One colour; a number outside 0..kCount-1 means the foreground.
    static CCurrentColour Get(const CProfile& profile, int number);
    // Writes one colour (numbers outside 0..kCount-1 are ignored).
    static void Set(CProfile& profile, int number, const CCurrentColour& colour);
    // The value name of the ARGB word of colour `number`; the index is
    // stored under the same name followed by "Index".
    static std::string ValueName(int number);
    // The colour every number starts with.
    static CCurrentColour Default(int number);
};

// The colour of `colour` for an image of `bpp` bits per pixel: the index for
// 8 bits or fewer, the ARGB value otherwise.
uint32_t ColourForDepth(const CCurrentColour& colour, int bpp);
