#include "app/cmds/CenterCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"

namespace {
// The worksheet's defaults, for a profile that has never held them.
constexpr int kDefaultScreenWidth = 640;
constexpr int kDefaultScreenHeight = 480;
} // namespace

CCenterCmd::CCenterCmd() {
    m_Name = "Centering";
}

bool CCenterCmd::Init(CTavixDoc* doc, int axis) {
    m_pDoc = doc;
    m_Axis = axis;
    CopySelection();
    m_ScreenExtent = axis == Horizontal
                         ? GetProfileInt("CImageView", "m_ScreenWidth", kDefaultScreenWidth)
                         : GetProfileInt("CImageView", "m_ScreenHeight", kDefaultScreenHeight);
    Submit();
    return true;
}

CPoint CCenterCmd::NewPosition(const CTavixImage& image) const {
    CPoint point = image.GetDefaultPoint();
    const CSize size = image.GetSize();
    // Integer division rounds toward zero, also for images larger than
    // the screen.
    if (m_Axis == Horizontal)
        point.x = (m_ScreenExtent - size.cx) / 2;
    else
        point.y = (m_ScreenExtent - size.cy) / 2;
    return point;
}

CCenterInfo::CCenterInfo() : CCommandInfo(ID_CENTER_VERTICAL) {}

bool CCenterInfo::IsCommand(unsigned nID) const {
    return nID == ID_CENTER_VERTICAL || nID == ID_CENTER_HORIZONTAL;
}

void CCenterInfo::Create(CTavixDoc* doc, unsigned nID) {
    const int axis = nID == ID_CENTER_VERTICAL ? CCenterCmd::Vertical : CCenterCmd::Horizontal;
    Start(doc, new CCenterCmd,
          [doc, axis](CCommand* cmd) { return static_cast<CCenterCmd*>(cmd)->Init(doc, axis); });
}

std::vector<std::string> CCenterInfo::GetSettingKeys() const {
    return {"CImageView/m_ScreenWidth", "CImageView/m_ScreenHeight"};
}

namespace {
CCenterInfo g_centerInfo;
} // namespace
