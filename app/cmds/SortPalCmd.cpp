#include "app/cmds/SortPalCmd.h"

#include "app/doc/CmdUI.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <numeric>

using namespace palette_ops;

namespace {

constexpr const char* kKeyLetters = "ARGBPHSV";
constexpr size_t kMaxSortString = 64;

double hue(uint32_t value) {
    const double r = (value >> 16 & 0xFF) / 255.0, g = (value >> 8 & 0xFF) / 255.0,
                 b = (value & 0xFF) / 255.0;
    const double high = std::max({r, g, b}), range = high - std::min({r, g, b});
    if (range <= 0) return 0;
    if (high == r) return 60 * std::fmod((g - b) / range + 6, 6.0);
    if (high == g) return 60 * ((b - r) / range + 2);
    return 60 * ((r - g) / range + 4);
}

double saturation(uint32_t value) {
    const int r = value >> 16 & 0xFF, g = value >> 8 & 0xFF, b = value & 0xFF;
    const int high = std::max({r, g, b});
    return high ? static_cast<double>(high - std::min({r, g, b})) / high : 0;
}

// The value of one key of an entry.
double measure(char key, uint32_t value, uint32_t count) {
    switch (toupper(static_cast<unsigned char>(key))) {
    case 'A':
        return value >> 24;
    case 'R':
        return value >> 16 & 0xFF;
    case 'G':
        return value >> 8 & 0xFF;
    case 'B':
        return value & 0xFF;
    case 'P':
        return count;
    case 'H':
        return hue(value);
    case 'S':
        return saturation(value);
    default: // 'V'
        return std::max({value >> 16 & 0xFF, value >> 8 & 0xFF, value & 0xFF});
    }
}

} // namespace

std::vector<CDialogField> CSortPalDlgData::GetFields() {
    return {{"m_SortStr", CDialogField::Text, &m_SortStr, 0, 0, "", "Sort string:"}};
}

std::string SortStringError(const std::string& keys) {
    if (keys.size() > kMaxSortString)
        return "The sort string is longer than " + std::to_string(kMaxSortString) + " characters.";
    int letters = 0;
    for (char c : keys) {
        if (isspace(static_cast<unsigned char>(c))) continue;
        if (!strchr(kKeyLetters, toupper(static_cast<unsigned char>(c))) || c == 0)
            return std::string("The sort string holds '") + c +
                   "': only A, R, G, B, P, H, S and V (upper case ascending, lower case "
                   "descending) can be sorted by.";
        ++letters;
    }
    if (letters == 0)
        return "The sort string is empty: name at least one of A, R, G, B, P, H, S, V.";
    return {};
}

std::array<uint8_t, 256> PaletteSortOrder(const TavixColour palette[256],
                                          const std::array<uint32_t, 256>& usage, const Flags& mask,
                                          int entries, const std::string& keys) {
    std::array<uint8_t, 256> order;
    std::iota(order.begin(), order.end(), 0);
    std::vector<int> places;
    for (int i = 0; i < std::min(entries, 256); ++i)
        if (mask[static_cast<size_t>(i)]) places.push_back(i);
    std::vector<int> sorted = places;
    std::stable_sort(sorted.begin(), sorted.end(), [&](int a, int b) {
        for (char key : keys) {
            if (isspace(static_cast<unsigned char>(key))) continue;
            const double ma = measure(key, argb(palette[a]), usage[static_cast<size_t>(a)]);
            const double mb = measure(key, argb(palette[b]), usage[static_cast<size_t>(b)]);
            if (ma == mb) continue;
            return isupper(static_cast<unsigned char>(key)) ? ma < mb : ma > mb;
        }
        return false;
    });
    for (size_t k = 0; k < places.size(); ++k)
        order[static_cast<size_t>(places[k])] = static_cast<uint8_t>(sorted[k]);
    return order;
}

CSortPalCmd::CSortPalCmd() {
    m_Name = "Palette Sort";
    FindModule("palsort");
    m_bShowProgress = false;
    m_SortStr = GetProfileString("CSortPalCmd", "m_SortStr", "HSV");
}

bool CSortPalCmd::Init(CTavixDoc* doc) {
    CSortPalDlgData dialog;
    dialog.m_SortStr = m_SortStr;
    if (!ZyUi().EditDialog(dialog)) return false;
    const std::string error = SortStringError(dialog.m_SortStr);
    if (!error.empty()) {
        ZyUi().MessageBox(error, MsgButtons::OK, MsgIcon::Warning);
        return false;
    }
    WriteProfileString("CSortPalCmd", "m_SortStr", dialog.m_SortStr);
    return Init(doc, dialog.m_SortStr);
}

bool CSortPalCmd::Init(CTavixDoc* doc, const std::string& sortString) {
    m_pDoc = doc;
    CopySelection();
    m_SortStr = sortString;
    const CColourSelection& colours = ZyColourSelection();
    m_Mask = colours.GetCount() > 1 ? colours.GetFlags() : allFlags();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CSortPalCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (!copy || copy->GetBitCount() > 8) return copy;
    TavixColour palette[256];
    copy->GetPalette(palette);
    const std::array<uint8_t, 256> order =
        PaletteSortOrder(palette, usage(*copy), m_Mask, copy->GetColorCount(), m_SortStr);
    uint8_t newIndex[256];
    for (int i = 0; i < 256; ++i)
        newIndex[order[static_cast<size_t>(i)]] = static_cast<uint8_t>(i);
    remapIndices(*copy, newIndex);
    for (int i = 0; i < 256; ++i)
        if (order[static_cast<size_t>(i)] != i)
            copy->SetPaletteEntry(i, palette[order[static_cast<size_t>(i)]]);
    return copy;
}

CSortPalInfo::CSortPalInfo() : CCommandInfo(ID_PALETTE_SORT) {
    m_bReserved1 = true;
}

bool CSortPalInfo::IsCommand(unsigned nID) const {
    return nID == ID_PALETTE_SORT ||
           (nID >= ID_PALETTE_SORT_HSV && nID <= ID_PALETTE_SORT_MOST_USED);
}

void CSortPalInfo::OnUpdate(CTavixDoc* doc, CCmdUI* ui) {
    CCommandInfo::OnUpdate(doc, ui);
    if ((ui->m_nID == ID_PALETTE_SORT_LEAST_USED || ui->m_nID == ID_PALETTE_SORT_MOST_USED) &&
        ZyColourSelection().GetCount() > 1)
        ui->Enable(false);
}

void CSortPalInfo::Create(CTavixDoc* doc, unsigned nID) {
    static const char* const kFixed[] = {"HSV", "RGB", "P", "p"};
    if (nID == ID_PALETTE_SORT) {
        Start(doc, new CSortPalCmd, [doc](CCommand* cmd) { return cmd->Init(doc); });
        return;
    }
    const std::string keys = kFixed[nID - ID_PALETTE_SORT_HSV];
    Start(doc, new CSortPalCmd,
          [doc, keys](CCommand* cmd) { return static_cast<CSortPalCmd*>(cmd)->Init(doc, keys); });
}

std::vector<std::string> CSortPalInfo::GetSettingKeys() const {
    CSortPalDlgData data;
    std::vector<std::string> keys = {"CSortPalCmd/m_SortStr"};
    for (const std::string& key : DialogKeys(data))
        keys.push_back(key);
    return keys;
}

namespace {
CSortPalInfo g_sortPalInfo;
} // namespace
