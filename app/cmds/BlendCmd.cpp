#include "app/cmds/BlendCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Hints.h"
#include "app/doc/LibraryMessages.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/blend/blend.h"

#include <cstdio>

namespace {

constexpr int kPsnrMethod = 5;
constexpr const char* kMethods =
    "Alpha,Paste,Sub,Add,Remove,psnr,prealpha,multiple,screen,overlay,tmask";

std::string psnrText(const BlendPsnr& psnr) {
    char text[160];
    snprintf(text, sizeof text,
             "PSNR %.2f dB, luminance %.2f dB (all images: %.2f dB, luminance %.2f dB)",
             psnr.channel, psnr.luminance, psnr.totalChannel, psnr.totalLuminance);
    return text;
}

} // namespace

std::vector<CDialogField> CBlendMethodDlgData::GetFields() {
    return {{"m_Method", CDialogField::Choice, &m_Method, 0, 10, kMethods, "Method"}};
}

CBlendCmd::CBlendCmd() {
    m_Name = "Blend Images";
}

bool CBlendCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    doc->GetSelectionMask(m_Range);
    Submit();
    return true;
}

void CBlendCmd::Do() {
    CBlendMethodDlgData dialog;
    dialog.m_Method = GetProfileInt("CBlendCmd", "blendmethod", 0);
    if (!ZyUi().EditDialog(dialog)) return;
    WriteProfileInt("CBlendCmd", "blendmethod", dialog.m_Method);

    const std::vector<int> positions = MarkedPositions(m_Range);
    if (positions.size() < 2) {
        ZyUi().SetStatusText("Blend Images needs two or more selected images");
        return;
    }
    const int module = module_find("Blend");
    const ModuleValue method = ModuleValue::ofInt(dialog.m_Method);
    blend_psnr_reset();
    std::unique_ptr<CTavixImage> result;
    // The module says why it refuses; the box shows it, as the output
    // window may well be hidden.
    CLibraryMessages messages;
    for (size_t k = 1; k < positions.size(); ++k) {
        const CTavixImage* lower = result ? result.get() : m_pDoc->GetImageAt(positions[0]);
        result = lower->RunModule(module, &method, 1, m_pDoc->GetImageAt(positions[k]));
        if (!result) {
            std::string reason = messages.Take();
            if (reason.rfind("Blend - ", 0) == 0) reason.erase(0, 8);
            ZyUi().MessageBox("The images could not be blended" +
                                  (reason.empty() ? std::string(".") : ": " + reason + "."),
                              MsgButtons::OK, MsgIcon::Error);
            return;
        }
    }
    const int position = InsertImageAt(m_pDoc, m_pDoc->GetImageCount(), std::move(result));
    CInsertHint hint(position, 1);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
    m_pDoc->SetFocus(position, true);
    if (dialog.m_Method == kPsnrMethod) {
        const std::string text = psnrText(blend_psnr_read());
        ZyUi().SetStatusText(text);
        ZyUi().Log(text);
    }
}

CBlendInfo::CBlendInfo() : CCommandInfo(ID_IMAGE_BLEND, [] { return new CBlendCmd; }) {}

void CBlendInfo::OnUpdate(CTavixDoc* doc, CCmdUI* ui) {
    CRange selection;
    doc->GetSelectionMask(selection);
    ui->Enable(selection.Count() >= 2);
}

std::vector<std::string> CBlendInfo::GetSettingKeys() const {
    CBlendMethodDlgData data;
    std::vector<std::string> keys = {"CBlendCmd/blendmethod"};
    for (const std::string& key : DialogKeys(data))
        keys.push_back(key);
    return keys;
}

namespace {
CBlendInfo g_blendInfo;
} // namespace
