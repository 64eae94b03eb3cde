#include "app/cmds/FlipCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/TavixImage.h"
#include "imaging/module/module.h"

CFlipCmd::CFlipCmd() {
    m_Name = "Flip";
    FindModule("flip");
}

bool CFlipCmd::Init(CTavixDoc* doc, int direction) {
    m_pDoc = doc;
    m_Direction = direction;
    CopySelection();
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CFlipCmd::FilterImage(CTavixImage* image) {
    const ModuleValue direction = ModuleValue::ofInt(m_Direction);
    return RunFilter(image, &direction, 1);
}

CFlipInfo::CFlipInfo() : CCommandInfo(ID_IMAGE_FLIP_HORIZONTAL) {}

bool CFlipInfo::IsCommand(unsigned nID) const {
    return nID == ID_IMAGE_FLIP_HORIZONTAL || nID == ID_IMAGE_FLIP_VERTICAL;
}

void CFlipInfo::Create(CTavixDoc* doc, unsigned nID) {
    const int direction =
        nID == ID_IMAGE_FLIP_HORIZONTAL ? CFlipCmd::Horizontal : CFlipCmd::Vertical;
    Start(doc, new CFlipCmd, [doc, direction](CCommand* cmd) {
        return static_cast<CFlipCmd*>(cmd)->Init(doc, direction);
    });
}

namespace {
CFlipInfo g_flipInfo;
} // namespace
