#include "app/ui/ImageViewSettings.h"

#include "app/doc/Profile.h"

#include <algorithm>

namespace {

uint32_t readColour(const CProfile& p, const char* name, uint32_t fallback) {
    return static_cast<uint32_t>(p.GetInt(kImageViewSection, name, static_cast<int>(fallback)));
}

bool readBool(const CProfile& p, const char* name, bool fallback) {
    return p.GetInt(kImageViewSection, name, fallback ? 1 : 0) != 0;
}

int readInt(const CProfile& p, const char* name, int fallback) {
    return p.GetInt(kImageViewSection, name, fallback);
}

void writeInt(CProfile& p, const char* name, int value) {
    p.WriteInt(kImageViewSection, name, value);
}

void writeColour(CProfile& p, const char* name, uint32_t value) {
    writeInt(p, name, static_cast<int>(value));
}

} // namespace

void CImageViewSettings::Load(const CProfile& p) {
    const CImageViewSettings d;
    ReloadOptions(p);
    m_GridVisible = readBool(p, "m_GridVisible", d.m_GridVisible);
    m_GridSnap = readBool(p, "m_GridSnap", d.m_GridSnap);
    m_AntSpeed = readInt(p, "m_AntSpeed", d.m_AntSpeed);
    m_ChannelViewMask = readColour(p, "m_ChannelViewMask", d.m_ChannelViewMask);
    m_ChannelWriteMask = readColour(p, "m_ChannelWriteMask", d.m_ChannelWriteMask);
    m_RestoreZF = readBool(p, "m_RestoreZF", d.m_RestoreZF);
    m_ZF = readInt(p, "m_ZF", d.m_ZF);
    m_ViewMode = readInt(p, "m_ViewMode", d.m_ViewMode);
    m_DrawOverlapWarning = readBool(p, "m_DrawOverlapWarning", d.m_DrawOverlapWarning);
    m_IsActiveTopMost = readBool(p, "m_IsActiveTopMost", d.m_IsActiveTopMost);
    m_IsActiveVisible = readBool(p, "m_IsActiveVisible", d.m_IsActiveVisible);
    m_HandlesVisible = readBool(p, "m_HandlesVisible", d.m_HandlesVisible);
    m_PointsVisible = readBool(p, "m_PointsVisible", d.m_PointsVisible);
    m_bAnimateZoom = readBool(p, "m_bAnimateZoom", d.m_bAnimateZoom);
    m_bLightIsSpotlight = readBool(p, "m_bLightIsSpotlight", d.m_bLightIsSpotlight);
    m_PasteMethod = readInt(p, "m_PasteMethod", d.m_PasteMethod);
}

void CImageViewSettings::ReloadOptions(const CProfile& p) {
    const CImageViewSettings d;
    m_CheckerColor1 = readColour(p, "m_CheckerColor1", d.m_CheckerColor1);
    m_CheckerColor2 = readColour(p, "m_CheckerColor2", d.m_CheckerColor2);
    m_CheckerColor3 = readColour(p, "m_CheckerColor3", d.m_CheckerColor3);
    m_CheckerColor4 = readColour(p, "m_CheckerColor4", d.m_CheckerColor4);
    m_CheckerSize = std::clamp(readInt(p, "m_CheckerSize", d.m_CheckerSize), 1, 8);
    m_ScreenX = readInt(p, "m_ScreenX", d.m_ScreenX);
    m_ScreenY = readInt(p, "m_ScreenY", d.m_ScreenY);
    m_ScreenWidth = readInt(p, "m_ScreenWidth", d.m_ScreenWidth);
    m_ScreenHeight = readInt(p, "m_ScreenHeight", d.m_ScreenHeight);
    m_GridSize = readInt(p, "m_GridSize", d.m_GridSize);
    m_GridColor = readColour(p, "m_GridColor", d.m_GridColor);
    m_GridStyle = readInt(p, "m_GridStyle", d.m_GridStyle);
    m_CenterPointColor = readColour(p, "m_CenterPointColor", d.m_CenterPointColor);
    m_HotPointColor = readColour(p, "m_HotPointColor", d.m_HotPointColor);
}

void CImageViewSettings::Save(CProfile& p) const {
    writeColour(p, "m_CheckerColor1", m_CheckerColor1);
    writeColour(p, "m_CheckerColor2", m_CheckerColor2);
    writeInt(p, "m_CheckerSize", m_CheckerSize);
    writeInt(p, "m_GridVisible", m_GridVisible);
    writeInt(p, "m_GridSnap", m_GridSnap);
    writeInt(p, "m_GridSize", m_GridSize);
    writeColour(p, "m_GridColor", m_GridColor);
    writeInt(p, "m_GridStyle", m_GridStyle);
    writeInt(p, "m_AntSpeed", m_AntSpeed);
    writeColour(p, "m_ChannelViewMask", m_ChannelViewMask);
    writeColour(p, "m_ChannelWriteMask", m_ChannelWriteMask);
    writeInt(p, "m_RestoreZF", m_RestoreZF);
    writeInt(p, "m_ZF", m_ZF);
    writeInt(p, "m_ViewMode", m_ViewMode);
    writeInt(p, "m_DrawOverlapWarning", m_DrawOverlapWarning);
    writeInt(p, "m_IsActiveTopMost", m_IsActiveTopMost);
    writeInt(p, "m_IsActiveVisible", m_IsActiveVisible);
    writeInt(p, "m_HandlesVisible", m_HandlesVisible);
    writeInt(p, "m_PointsVisible", m_PointsVisible);
}

int CheckerExponent(int checkerSize, double zoom) {
    int s = checkerSize;
    for (double limit : {0.5, 0.25, 0.125})
        if (zoom <= limit) --s;
    for (double limit : {2.0, 4.0, 8.0})
        if (zoom >= limit) ++s;
    return std::clamp(s, 1, 8);
}

uint32_t ToggleChannel(uint32_t mask, uint32_t channel) {
    return (mask & channel) ? (mask & ~channel) : (mask | channel);
}
