#include "app/doc/CurrentColours.h"

#include "app/doc/Profile.h"

namespace {

constexpr const char* kSection = "CCurrentColours";

bool validNumber(int number) {
    return number >= 0 && number < CCurrentColours::kCount;
}

} // namespace

CCurrentColours::CCurrentColours() {
    for (int n = 0; n < kCount; ++n)
        m_Colours[n] = Default(n);
}

CCurrentColour CCurrentColours::Default(int number) {
    // Opaque black draws, a transparent fill leaves uncovered areas clear;
    // the others start as distinct colours so that their swatches can be
    // told apart.
    static constexpr uint32_t kArgb[kCount] = {0xFF000000, 0xFFFFFFFF, 0xFFFF0000, 0xFF00FF00,
                                               0x00000000, 0xFF0000FF, 0xFFFFFF00, 0xFF808080};
    if (!validNumber(number)) number = kForegroundNumber;
    return {number == kFillNumber ? 0 : number, kArgb[number]};
}

std::string CCurrentColours::ValueName(int number) {
    if (!validNumber(number) || number == kForegroundNumber) return "m_Foreground";
    if (number == kFillNumber) return "m_Background";
    return "m_Colour" + std::to_string(number);
}

CCurrentColour CCurrentColours::Get(const CProfile& profile, int number) {
    if (!validNumber(number)) number = kForegroundNumber;
    const CCurrentColour fallback = Default(number);
    const std::string name = ValueName(number);
    CCurrentColour colour;
    colour.m_Argb = static_cast<uint32_t>(
        profile.GetInt(kSection, name.c_str(), static_cast<int>(fallback.m_Argb)));
    colour.m_Index = profile.GetInt(kSection, (name + "Index").c_str(), fallback.m_Index) & 0xFF;
    return colour;
}

void CCurrentColours::Set(CProfile& profile, int number, const CCurrentColour& colour) {
    if (!validNumber(number)) return;
    const std::string name = ValueName(number);
    profile.WriteInt(kSection, name.c_str(), static_cast<int>(colour.m_Argb));
    profile.WriteInt(kSection, (name + "Index").c_str(), colour.m_Index & 0xFF);
}

CCurrentColours CCurrentColours::Read(const CProfile& profile) {
    CCurrentColours colours;
    for (int n = 0; n < kCount; ++n)
        colours.m_Colours[n] = Get(profile, n);
    return colours;
}

void CCurrentColours::Write(CProfile& profile) const {
    for (int n = 0; n < kCount; ++n)
        Set(profile, n, m_Colours[n]);
}

uint32_t ColourForDepth(const CCurrentColour& colour, int bpp) {
    return bpp <= 8 ? static_cast<uint32_t>(colour.m_Index & 0xFF) : colour.m_Argb;
}
