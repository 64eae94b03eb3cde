#include "app/doc/CurrentColours.h"

#include "app/doc/Profile.h"

namespace {
constexpr const char* kSection = "CCurrentColours";
} // namespace

CCurrentColours CCurrentColours::Read(const CProfile& profile) {
    CCurrentColours pair;
    auto read = [&profile](const char* entry, uint32_t fallback) {
        return static_cast<uint32_t>(profile.GetInt(kSection, entry, static_cast<int>(fallback)));
    };
    pair.m_Foreground.m_Argb = read("m_Foreground", pair.m_Foreground.m_Argb);
    pair.m_Foreground.m_Index = static_cast<int>(read("m_ForegroundIndex", 0) & 0xFF);
    pair.m_Background.m_Argb = read("m_Background", pair.m_Background.m_Argb);
    pair.m_Background.m_Index = static_cast<int>(read("m_BackgroundIndex", 0) & 0xFF);
    return pair;
}

void CCurrentColours::Write(CProfile& profile) const {
    profile.WriteInt(kSection, "m_Foreground", static_cast<int>(m_Foreground.m_Argb));
    profile.WriteInt(kSection, "m_ForegroundIndex", m_Foreground.m_Index);
    profile.WriteInt(kSection, "m_Background", static_cast<int>(m_Background.m_Argb));
    profile.WriteInt(kSection, "m_BackgroundIndex", m_Background.m_Index);
}

uint32_t ColourForDepth(const CCurrentColour& colour, int bpp) {
    return bpp <= 8 ? static_cast<uint32_t>(colour.m_Index & 0xFF) : colour.m_Argb;
}
