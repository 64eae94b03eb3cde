#include "app/cmds/ShapePropertiesCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <cstdio>
#include <cstring>

namespace {

struct AttrField {
    int CShapePropertiesDlgData::*member;
    uint32_t bit;
};
constexpr AttrField kAttrFields[] = {
    {&CShapePropertiesDlgData::m_Mip, kAttrMipLevel},
    {&CShapePropertiesDlgData::m_Rotated, kAttrRotated},
    {&CShapePropertiesDlgData::m_Transposed, kAttrTransposed},
    {&CShapePropertiesDlgData::m_Dot3, kAttrDot3},
    {&CShapePropertiesDlgData::m_Embm, kAttrEmbm},
};

constexpr double kCoordinate = 1 << 20;

} // namespace

bool CShapeEdit::IsEmpty() const {
    return !m_Name && !m_Comment && !m_HotSpots && !m_CenterX && !m_CenterY && !m_DefaultX &&
           !m_DefaultY && !m_SubType && !m_Packed && !m_StartColour && !m_NumColours &&
           !m_AttrSet && !m_AttrClear;
}

void CShapeEdit::ApplyTo(CTavixImage& image) const {
    if (m_Name) image.SetName(*m_Name);
    if (m_HotSpots) image.SetHotSpotsFromText(*m_HotSpots);
    TavixInfo* info = image.GetInfoForWrite();
    if (!info) return;
    if (m_Comment) snprintf(info->comment, sizeof info->comment, "%s", m_Comment->c_str());
    if (m_CenterX) info->centerx = *m_CenterX;
    if (m_CenterY) info->centery = *m_CenterY;
    if (m_DefaultX) info->defaultx = *m_DefaultX;
    if (m_DefaultY) info->defaulty = *m_DefaultY;
    if (m_SubType) info->subtype = *m_SubType;
    if (m_Packed) info->packed = *m_Packed;
    if (m_StartColour) info->startcolour = *m_StartColour;
    if (m_NumColours) info->numcolours = *m_NumColours;
    info->attributes = (info->attributes | m_AttrSet) & ~m_AttrClear;
}

std::vector<CDialogField> CShapePropertiesDlgData::GetFields() {
    return {
        {"m_Name", CDialogField::Text, &m_Name, 0, 0, "", "Name"},
        {"m_CenterX", CDialogField::Integer, &m_CenterX, -kCoordinate, kCoordinate, "", "Centre X"},
        {"m_CenterY", CDialogField::Integer, &m_CenterY, -kCoordinate, kCoordinate, "", "Centre Y"},
        {"m_DefaultX", CDialogField::Integer, &m_DefaultX, -kCoordinate, kCoordinate, "",
         "Default point X (worksheet position)"},
        {"m_DefaultY", CDialogField::Integer, &m_DefaultY, -kCoordinate, kCoordinate, "",
         "Default point Y (worksheet position)"},
        {"m_HotSpots", CDialogField::Text, &m_HotSpots, 0, 0, "", "Hot spots (x,y ; x,y)"},
        {"m_Comment", CDialogField::Text, &m_Comment, 0, 0, "", "Comment"},
        {"m_SubType", CDialogField::Integer, &m_SubType, 0, 255, "", "Record type"},
        {"m_Packed", CDialogField::Integer, &m_Packed, 0, 255, "", "Packing"},
        {"m_Mip", CDialogField::Choice, &m_Mip, 0, 1, "No,Yes", "Mip level"},
        {"m_Rotated", CDialogField::Choice, &m_Rotated, 0, 1, "No,Yes", "Rotated"},
        {"m_Transposed", CDialogField::Choice, &m_Transposed, 0, 1, "No,Yes", "Transposed"},
        {"m_Dot3", CDialogField::Choice, &m_Dot3, 0, 1, "No,Yes", "DOT3"},
        {"m_Embm", CDialogField::Choice, &m_Embm, 0, 1, "No,Yes", "EMBM"},
        {"m_StartColour", CDialogField::Integer, &m_StartColour, 0, 255, "", "Start colour"},
        {"m_NumColours", CDialogField::Integer, &m_NumColours, 0, 256, "", "Colour count"},
    };
}

void CShapePropertiesDlgData::Read(const CTavixImage& image) {
    const TavixInfo& info = *image.GetInfo();
    m_Name = image.GetName();
    m_Comment = std::string(info.comment, strnlen(info.comment, sizeof info.comment));
    m_HotSpots = image.GetHotSpotsText();
    m_CenterX = info.centerx;
    m_CenterY = info.centery;
    m_DefaultX = info.defaultx;
    m_DefaultY = info.defaulty;
    m_SubType = info.subtype;
    m_Packed = info.packed;
    m_StartColour = info.startcolour;
    m_NumColours = info.numcolours;
    for (const AttrField& field : kAttrFields)
        this->*field.member = (info.attributes & field.bit) ? 1 : 0;
}

CShapeEdit CShapePropertiesDlgData::Changes(const CShapePropertiesDlgData& before) const {
    CShapeEdit edit;
    auto text = [](std::optional<std::string>& out, const std::string& now,
                   const std::string& was) {
        if (now != was) out = now;
    };
    auto number = [](std::optional<int>& out, int now, int was) {
        if (now != was) out = now;
    };
    text(edit.m_Name, m_Name, before.m_Name);
    text(edit.m_Comment, m_Comment, before.m_Comment);
    text(edit.m_HotSpots, m_HotSpots, before.m_HotSpots);
    number(edit.m_CenterX, m_CenterX, before.m_CenterX);
    number(edit.m_CenterY, m_CenterY, before.m_CenterY);
    number(edit.m_DefaultX, m_DefaultX, before.m_DefaultX);
    number(edit.m_DefaultY, m_DefaultY, before.m_DefaultY);
    number(edit.m_SubType, m_SubType, before.m_SubType);
    number(edit.m_Packed, m_Packed, before.m_Packed);
    number(edit.m_StartColour, m_StartColour, before.m_StartColour);
    number(edit.m_NumColours, m_NumColours, before.m_NumColours);
    for (const AttrField& field : kAttrFields) {
        if (this->*field.member == before.*field.member) continue;
        (this->*field.member ? edit.m_AttrSet : edit.m_AttrClear) |= field.bit;
    }
    return edit;
}

CShapePropertiesCmd::CShapePropertiesCmd() {
    m_Name = "Shape Properties";
    m_bCanUndo = true;
}

bool CShapePropertiesCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    if (!m_bPreset) {
        const CTavixImage* focused = doc->GetFocusImage();
        if (!focused) return false;
        CShapePropertiesDlgData before;
        before.Read(*focused);
        CShapePropertiesDlgData dialog = before;
        if (!ZyUi().EditDialog(dialog)) return false;
        m_Edit = dialog.Changes(before);
    }
    if (m_Edit.IsEmpty()) return false;
    if (!m_bPresetTargets) doc->GetSelectionMask(m_Range);
    m_Positions = MarkedPositions(m_Range);
    Submit();
    return true;
}

void CShapePropertiesCmd::Do() {
    m_Before.clear();
    m_After.clear();
    for (int position : m_Positions) {
        CTavixImage* image = m_pDoc->GetImageAt(position);
        const auto* bytes = reinterpret_cast<const uint8_t*>(image->GetInfo());
        m_Before.emplace_back(bytes, bytes + image->GetInfoSize());
        m_Edit.ApplyTo(*image);
        bytes = reinterpret_cast<const uint8_t*>(image->GetInfo());
        m_After.emplace_back(bytes, bytes + image->GetInfoSize());
    }
    CModifiedHint hint(m_Range);
    hint.m_Flag = 1; // attributes only: no pixel changed
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CShapePropertiesCmd::Put(const std::vector<std::vector<uint8_t>>& records) {
    for (size_t k = 0; k < m_Positions.size() && k < records.size(); ++k) {
        CTavixImage* image = m_pDoc->GetImageAt(m_Positions[k]);
        TavixInfo* info = image ? image->GetInfoForWrite() : nullptr;
        // Only the record's fields were edited, so a record of the same
        // size is the same image's; anything else is left alone.
        if (info && static_cast<size_t>(image->GetInfoSize()) == records[k].size())
            memcpy(info, records[k].data(), records[k].size());
    }
    CModifiedHint hint(m_Range);
    hint.m_Flag = 1; // attributes only: no pixel changed
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

void CShapePropertiesCmd::Undo() {
    Put(m_Before);
}

void CShapePropertiesCmd::Redo() {
    Put(m_After);
}

CShapePropertiesInfo::CShapePropertiesInfo()
    : CCommandInfo(ZyIds::ShapeProperties, [] { return new CShapePropertiesCmd; }) {}

std::vector<std::string> CShapePropertiesInfo::GetSettingKeys() const {
    CShapePropertiesDlgData data;
    return DialogKeys(data);
}

namespace {
CShapePropertiesInfo g_shapePropertiesInfo;
} // namespace
