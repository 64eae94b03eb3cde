#pragma once
// The persisted settings of the worksheet view, all in section "CImageView".
// A view reads every value when it is built and writes back the ones marked
// as its own when it is destroyed; the Preferences sheet writes the values
// it edits, and views read those again on COptionsChangedHint.

#include <cstdint>

class CProfile;

constexpr const char* kImageViewSection = "CImageView";

// Channel mask bits.
enum : uint32_t {
    kChannelAlpha = 0xFF000000,
    kChannelRed = 0x00FF0000,
    kChannelGreen = 0x0000FF00,
    kChannelBlue = 0x000000FF,
    kChannelRGB = 0x00FFFFFF,
};

struct CImageViewSettings {
    uint32_t m_CheckerColor1 = 0xFFFFFFFF;
    uint32_t m_CheckerColor2 = 0xFFB0B0B0;
    uint32_t m_CheckerColor3 = 0xFF989898;
    uint32_t m_CheckerColor4 = 0xFF909090;
    int m_CheckerSize = 4;
    int m_ScreenX = 0;
    int m_ScreenY = 0;
    int m_ScreenWidth = 640;
    int m_ScreenHeight = 480;
    bool m_GridVisible = false;
    bool m_GridSnap = false;
    int m_GridSize = 10;
    uint32_t m_GridColor = 0xFF000000;
    int m_GridStyle = 0;
    int m_AntSpeed = 75;
    uint32_t m_ChannelViewMask = 0xFFFFFFFF;
    uint32_t m_ChannelWriteMask = 0x00FFFFFF;
    bool m_RestoreZF = false;
    int m_ZF = 16;
    int m_ViewMode = 0;
    bool m_DrawOverlapWarning = false;
    bool m_IsActiveTopMost = true;
    bool m_IsActiveVisible = true;
    bool m_HandlesVisible = true;
    bool m_PointsVisible = false;
    uint32_t m_CenterPointColor = 0xFFE0E000;
    uint32_t m_HotPointColor = 0xFFA00000;
    bool m_bAnimateZoom = true;
    bool m_bLightIsSpotlight = false;
    int m_PasteMethod = 1;

    // Every value of the section, each with its default.
    void Load(const CProfile& profile);
    // The values the view owns ("saved"), and m_RestoreZF unchanged.
    void Save(CProfile& profile) const;
    // The values the Preferences sheet edits: checker colours and size,
    // screen area, grid colour, style and size, point colours.
    void ReloadOptions(const CProfile& profile);
};

// The checker exponent after the zoom's adjustment, 1 to 8.
int CheckerExponent(int checkerSize, double zoom);

// Toggles a channel entry in `mask`: all its bits set when none was,
// otherwise all cleared.
uint32_t ToggleChannel(uint32_t mask, uint32_t channel);
