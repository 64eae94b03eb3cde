#include "app/cmds/MoveColorCmd.h"

#include "app/doc/CmdUI.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <stdexcept>

namespace {
// The target of the last move, for the next dialog.
int g_lastTarget = 0;
} // namespace

std::vector<CDialogField> CMoveColorDlgData::GetFields() {
    return {{"m_Target", CDialogField::Integer, &m_Target, 0, 255, "",
             "Move the selected colours to index:"}};
}

CMoveColorCmd::CMoveColorCmd() {
    m_Name = "Move Colors";
    FindModule("xcolour");
    m_bShowProgress = false;
    const auto& flags = ZyColourSelection().GetFlags();
    m_Mask.assign(flags.begin(), flags.end());
    m_Target = g_lastTarget;
}

bool CMoveColorCmd::Init(CTavixDoc* doc) {
    if (m_Preset >= 0 && m_Preset <= 255) return Init(doc, m_Preset);
    CMoveColorDlgData dialog;
    dialog.m_Target = m_Target;
    if (!ZyUi().EditDialog(dialog)) return false;
    g_lastTarget = dialog.m_Target;
    return Init(doc, dialog.m_Target);
}

bool CMoveColorCmd::Init(CTavixDoc* doc, int target) {
    m_pDoc = doc;
    m_Target = target;
    CopySelection();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CMoveColorCmd::FilterImage(CTavixImage* image) {
    std::unique_ptr<CTavixImage> copy = image->Duplicate();
    if (!copy || copy->GetBitCount() > 8) return copy;
    for (int y = 0; y < copy->GetHeight(); ++y) {
        uint8_t* row = copy->GetRow(y);
        for (int x = 0; x < copy->GetWidth(); ++x) {
            if (row[x] >= m_Mask.size())
                throw std::invalid_argument("pixel index beyond the colour mask");
            if (m_Mask[row[x]]) row[x] = static_cast<uint8_t>(m_Target);
        }
    }
    return copy;
}

CMoveColorInfo::CMoveColorInfo()
    : CCommandInfo(ID_PALETTE_MOVE_COLORS, [] { return new CMoveColorCmd; }) {
    m_bReserved1 = true;
}

void CMoveColorInfo::OnUpdate(CTavixDoc* doc, CCmdUI* ui) {
    CCommandInfo::OnUpdate(doc, ui);
    if (ZyColourSelection().GetCount() == 0) ui->Enable(false);
}

std::vector<std::string> CMoveColorInfo::GetSettingKeys() const {
    CMoveColorDlgData data;
    return DialogKeys(data);
}

namespace {
CMoveColorInfo g_moveColorInfo;
} // namespace
