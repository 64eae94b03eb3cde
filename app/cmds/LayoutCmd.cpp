#include "app/cmds/LayoutCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/Exceptions.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/layout/pack.h"
#include "imaging/module/module.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr const char* kSection = "CLayoutCmd";
constexpr int kRotChoiceQuarterClockwise = 1; // "0,90,180,-90"

// Rows of a quarter turn clockwise: result (x, y) takes source
// (y, height - 1 - x).
template <typename Pixel> void turnPixels(const CTavixImage& from, CTavixImage& to) {
    const int w = from.GetWidth(), h = from.GetHeight();
    for (int y = 0; y < w; ++y) {
        auto* out = reinterpret_cast<Pixel*>(to.GetRow(y));
        for (int x = 0; x < h; ++x)
            memcpy(&out[x], from.GetPixelAddress(y, h - 1 - x), sizeof(Pixel));
    }
}

} // namespace

std::unique_ptr<CTavixImage> TurnQuarterClockwise(const CTavixImage& image) {
    const TavixInfo& in = *image.GetInfo();
    auto turned = std::make_unique<CTavixImage>();
    std::unique_ptr<uint8_t[]> record(new (std::nothrow)
                                          uint8_t[static_cast<size_t>(image.GetInfoSize())]);
    if (!record) throw CMemoryException();
    memcpy(record.get(), &in, static_cast<size_t>(image.GetInfoSize()));
    auto* info = reinterpret_cast<TavixInfo*>(record.get());
    std::swap(info->width, info->height);
    // A point (x, y) of the source lands on (height - 1 - y, x).
    info->centerx = in.height - 1 - in.centery;
    info->centery = in.centerx;
    const int spots = std::clamp(in.numhotspots, 0, kTavixMaxHotSpots);
    for (int i = 0; i < spots; ++i) {
        info->hotspots[i].x = in.height - 1 - in.hotspots[i].y;
        info->hotspots[i].y = in.hotspots[i].x;
    }
    turned->SetInformation(*info);
    if (image.GetPixelBytes() == 1)
        turnPixels<uint8_t>(image, *turned);
    else
        turnPixels<uint32_t>(image, *turned);
    turned->TakeModifiedMark();
    turned->m_OnWorksheet = image.m_OnWorksheet;
    return turned;
}

CLayoutCmd::CLayoutCmd() {
    m_Name = "Layout";
    m_bCanUndo = true;
    m_Settings.m_X = GetProfileInt(kSection, "m_X", 0);
    m_Settings.m_Y = GetProfileInt(kSection, "m_Y", 0);
    m_Settings.m_Width = GetProfileInt(kSection, "m_Width", 256);
    m_Settings.m_Height = GetProfileInt(kSection, "m_Height", 256);
    m_Settings.m_Rotate = GetProfileInt(kSection, "m_Rotate", 0);
    m_Settings.m_Platform = GetProfileInt(kSection, "m_Platform", 0);
    m_Settings.m_CheckUVs = GetProfileInt(kSection, "m_CheckUVs", 1);
    m_Settings.m_CheckEdges = GetProfileInt(kSection, "m_CheckEdges", 1);
}

CLayoutCmd::~CLayoutCmd() = default;

bool CLayoutCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    m_Settings.m_AllShapes = GetProfileInt(kSection, "m_AllShapes", 1);
    if (!ZyUi().EditDialog(m_Settings)) return false;
    m_Settings.m_Platform = std::clamp(m_Settings.m_Platform, 0, kLayoutPlatformCount - 1);
    WriteProfileInt(kSection, "m_X", m_Settings.m_X);
    WriteProfileInt(kSection, "m_Y", m_Settings.m_Y);
    WriteProfileInt(kSection, "m_Width", m_Settings.m_Width);
    WriteProfileInt(kSection, "m_Height", m_Settings.m_Height);
    WriteProfileInt(kSection, "m_Rotate", m_Settings.m_Rotate);
    WriteProfileInt(kSection, "m_Platform", m_Settings.m_Platform);
    WriteProfileInt(kSection, "m_CheckUVs", m_Settings.m_CheckUVs);
    WriteProfileInt(kSection, "m_CheckEdges", m_Settings.m_CheckEdges);
    WriteProfileInt(kSection, "m_AllShapes", m_Settings.m_AllShapes);
    if (m_Settings.m_AllShapes) {
        m_Range.SetSize(doc->GetImageCount());
        m_Range.SetAll(1);
    } else {
        doc->GetSelectionMask(m_Range);
    }
    Submit();
    return true;
}

// Through the library's "rot" module when it can turn; otherwise our own
// quarter turn (the module's pixel work may be missing from this build).
std::unique_ptr<CTavixImage> CLayoutCmd::Turn(const CTavixImage& image) {
    if (m_RotModule != 0) {
        const int module = module_find("rot");
        const ModuleValue angle = ModuleValue::ofInt(kRotChoiceQuarterClockwise);
        if (module > 0)
            if (auto turned = image.RunModule(module, &angle, 1)) {
                m_RotModule = module;
                return turned;
            }
        m_RotModule = 0;
    }
    return TurnQuarterClockwise(image);
}

void CLayoutCmd::Do() {
    std::vector<int> positions;
    std::vector<PackShape> shapes;
    for (int i = 0; i < m_Range.GetSize() && i < m_pDoc->GetImageCount(); ++i) {
        if (!m_Range.IsSelected(i)) continue;
        const CTavixImage* image = m_pDoc->GetImageAt(i);
        positions.push_back(i);
        shapes.push_back({image->GetWidth(), image->GetHeight()});
    }
    const CLayoutPlatform& platform = kLayoutPlatforms[m_Settings.m_Platform];
    int32_t flags = 0;
    if (m_Settings.m_CheckUVs) flags |= kPackRespectPages;
    if (m_Settings.m_CheckEdges) flags |= kPackCheckEdges;
    if (m_Settings.m_Rotate) flags |= kPackRotate;
    const PackArea area{m_Settings.m_X,
                        m_Settings.m_Y,
                        std::max(0, m_Settings.m_Width),
                        std::max(0, m_Settings.m_Height),
                        platform.m_PageWidth,
                        platform.m_PageHeight,
                        flags};
    std::vector<PackPlace> places(shapes.size());
    const int32_t fitted =
        pack_shapes(&area, shapes.data(), static_cast<int32_t>(shapes.size()), places.data());
    if (fitted < 0) throw CMemoryException();

    m_Moves.clear();
    m_Moves.reserve(positions.size());
    CRange changed(m_pDoc->GetImageCount());
    for (size_t k = 0; k < positions.size(); ++k) {
        CTavixImage* image = m_pDoc->GetImageAt(positions[k]);
        CMove move{positions[k], image->GetDefaultPoint(), {places[k].x, places[k].y}, nullptr};
        if (places[k].rotated) {
            std::unique_ptr<CTavixImage> turned = Turn(*image);
            turned->SetDefaultPoint(move.m_After);
            move.m_Other.reset(m_pDoc->SetImageAt(move.m_Position, turned.release()));
        } else {
            image->SetDefaultPoint(move.m_After);
        }
        changed.SetAt(move.m_Position, 1);
        m_Moves.push_back(std::move(move));
    }
    CModifiedHint hint(changed);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
    if (fitted < static_cast<int32_t>(shapes.size()))
        ZyUi().MessageBox("Not all of the images could fit in the given area.  Shapes that could "
                          "not be placed are "
                          "placed along the bottom edge of VRAM at y location 512",
                          MsgButtons::OK, MsgIcon::Information);
}

void CLayoutCmd::Swap(bool toAfter) {
    CRange changed(m_pDoc->GetImageCount());
    for (CMove& move : m_Moves) {
        if (move.m_Position >= m_pDoc->GetImageCount()) continue;
        if (move.m_Other)
            move.m_Other.reset(m_pDoc->SetImageAt(move.m_Position, move.m_Other.release()));
        else
            m_pDoc->GetImageAt(move.m_Position)
                ->SetDefaultPoint(toAfter ? move.m_After : move.m_Before);
        changed.SetAt(move.m_Position, 1);
    }
    CModifiedHint hint(changed);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CLayoutCmd::Undo() {
    Swap(false);
}

void CLayoutCmd::Redo() {
    Swap(true);
}

std::vector<CDialogField> CLayoutDlgData::GetFields() {
    constexpr double kMaxSide = 1 << 20;
    return {
        {"m_X", CDialogField::Integer, &m_X, -kMaxSide, kMaxSide, "", "Left"},
        {"m_Y", CDialogField::Integer, &m_Y, -kMaxSide, kMaxSide, "", "Top"},
        {"m_Width", CDialogField::Integer, &m_Width, 1, kMaxSide, "", "Width"},
        {"m_Height", CDialogField::Integer, &m_Height, 1, kMaxSide, "", "Height"},
        {"m_Rotate", CDialogField::Integer, &m_Rotate, 0, 1, "", "Shapes can be rotated"},
        {"m_Platform", CDialogField::Integer, &m_Platform, 0, kLayoutPlatformCount - 1, "",
         "Target platform"},
        {"m_CheckUVs", CDialogField::Integer, &m_CheckUVs, 0, 1, "", "Respect Texture Pages"},
        {"m_CheckEdges", CDialogField::Integer, &m_CheckEdges, 0, 1, "",
         "Check Texture Page Edges"},
        {"m_AllShapes", CDialogField::Integer, &m_AllShapes, 0, 1, "", "Layout all shapes in file"},
    };
}

CLayoutInfo::CLayoutInfo() : CCommandInfo(ID_IMAGE_LAYOUT_WIZARD, [] { return new CLayoutCmd; }) {}

std::vector<std::string> CLayoutInfo::GetSettingKeys() const {
    CLayoutDlgData data;
    return DialogKeys(data);
}

namespace {
CLayoutInfo g_layoutInfo;
} // namespace
