#pragma once
// The foreground and background colours the commands fill and draw with.
//
// The colour editor's wells will own the application's current colours;
// until they exist, the pair lives in the settings store (section
// "CCurrentColours") and the toolbar shows and sets it. Each colour is kept
// twice, as a palette index for indexed images and as an 0xAARRGGBB value
// for deeper ones, because a command picks the one that suits each image.

#include "app/doc/UserInterface.h"

class CProfile;

struct CCurrentColours {
    // The current colour number the fill colours are taken from.
    static constexpr int kFillNumber = 4;

    CCurrentColour m_Foreground{0, 0xFF000000};
    CCurrentColour m_Background{0, 0x00000000};

    static CCurrentColours Read(const CProfile& profile);
    void Write(CProfile& profile) const;
};

// The colour of `colour` for an image of `bpp` bits per pixel: the index for
// 8 bits or fewer, the ARGB value otherwise.
uint32_t ColourForDepth(const CCurrentColour& colour, int bpp);
