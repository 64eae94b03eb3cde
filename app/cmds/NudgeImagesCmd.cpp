#include "app/cmds/NudgeImagesCmd.h"

#include "app/doc/TavixImage.h"

CNudgeImagesCmd::CNudgeImagesCmd(int dx, int dy) : m_Dx(dx), m_Dy(dy) {
    m_Name = "Move Images";
}

CPoint CNudgeImagesCmd::NewPosition(const CTavixImage& image) const {
    const CPoint at = image.GetDefaultPoint();
    return {at.x + m_Dx, at.y + m_Dy};
}
