#include "app/cmds/AlignCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"

CAlignCmd::CAlignCmd() {
    m_Name = "Alignment";
}

bool CAlignCmd::Init(CTavixDoc* doc, int side) {
    m_pDoc = doc;
    m_Side = side;
    CopySelection();
    const CTavixImage* focused = doc->GetFocusImage();
    if (!focused) return false;
    const CRect place = focused->GetPlacementRect();
    switch (side) {
    case Left:
        m_Target = place.left;
        break;
    case Right:
        m_Target = place.right;
        break;
    case Top:
        m_Target = place.top;
        break;
    default:
        m_Target = place.bottom;
        break;
    }
    Submit();
    return true;
}

CPoint CAlignCmd::NewPosition(const CTavixImage& image) const {
    CPoint point = image.GetDefaultPoint();
    const CSize size = image.GetSize();
    switch (m_Side) {
    case Left:
        point.x = m_Target;
        break;
    case Right:
        point.x = m_Target - size.cx;
        break;
    case Top:
        point.y = m_Target;
        break;
    default:
        point.y = m_Target - size.cy;
        break;
    }
    return point;
}

CAlignInfo::CAlignInfo() : CCommandInfo(ID_ALIGN_LEFT) {}

bool CAlignInfo::IsCommand(unsigned nID) const {
    return nID >= ID_ALIGN_LEFT && nID <= ID_ALIGN_BOTTOM;
}

void CAlignInfo::Create(CTavixDoc* doc, unsigned nID) {
    static const int kSides[] = {CAlignCmd::Left, CAlignCmd::Right, CAlignCmd::Top,
                                 CAlignCmd::Bottom};
    const int side = kSides[nID - ID_ALIGN_LEFT];
    Start(doc, new CAlignCmd,
          [doc, side](CCommand* cmd) { return static_cast<CAlignCmd*>(cmd)->Init(doc, side); });
}

namespace {
CAlignInfo g_alignInfo;
} // namespace
