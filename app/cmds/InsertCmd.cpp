#include "app/cmds/InsertCmd.h"

#include "app/cmds/ListEdit.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

namespace {

constexpr int kInsertDepths[] = {8, 32};
constexpr int kMaxSide = 16384;

// The last new image's size and depth, for the next dialog.
int g_width = 64;
int g_height = 64;
int g_depth = 32;

int depthChoice(int depth) {
    return depth == kInsertDepths[0] ? 0 : 1;
}

} // namespace

std::vector<CDialogField> CInsertDlgData::GetFields() {
    return {{"m_Width", CDialogField::Integer, &m_Width, 1, kMaxSide, "", "Width"},
            {"m_Height", CDialogField::Integer, &m_Height, 1, kMaxSide, "", "Height"},
            {"m_Depth", CDialogField::Choice, &m_Depth, 0, 1, "8,32", "Bits per pixel"}};
}

CInsertCmd::CInsertCmd() {
    m_Name = "Insert";
}

bool CInsertCmd::Init(CTavixDoc* doc, bool atEnd) {
    m_pDoc = doc;
    if (!ZyUi().GetClipboardFormats().empty()) {
        m_Images = ZyUi().ReadClipboardImages({});
        if (!m_Images.empty()) {
            m_bFromClipboard = true;
            m_Position = atEnd ? doc->GetImageCount() : doc->GetFocusIndex() + 1;
            Submit();
            return true;
        }
    }
    CInsertDlgData data;
    data.m_Width = g_width;
    data.m_Height = g_height;
    data.m_Depth = depthChoice(g_depth);
    if (!ZyUi().EditDialog(data)) return false;
    const int depth = kInsertDepths[data.m_Depth == 0 ? 0 : 1];
    return Init(doc, data.m_Width, data.m_Height, depth, atEnd);
}

bool CInsertCmd::Init(CTavixDoc* doc, int width, int height, int depth, bool atEnd) {
    m_pDoc = doc;
    if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide ||
        (depth != 8 && depth != 32))
        return false;
    m_Width = g_width = width;
    m_Height = g_height = height;
    m_Depth = g_depth = depth;
    m_Position =
        atEnd || doc->GetImageCount() == 0 ? doc->GetImageCount() : doc->GetFocusIndex() + 1;
    Submit();
    return true;
}

void CInsertCmd::Do() {
    if (!m_bFromClipboard) {
        auto image = std::make_unique<CTavixImage>();
        image->Create(m_Width, m_Height, m_Depth);
        m_Images.push_back(std::move(image));
    }
    const int count = static_cast<int>(m_Images.size());
    for (int k = 0; k < count; ++k)
        InsertImageAt(m_pDoc, m_Position + k, std::move(m_Images[static_cast<size_t>(k)]));
    m_Images.clear();
    CInsertHint hint(m_Position, count);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
    m_pDoc->SetFocus(m_Position, true);
}

CInsertInfo::CInsertInfo() : CCommandInfo(ID_LIST_ADD_NEW_IMAGE) {
    m_bNeedsImages = false;
}

bool CInsertInfo::IsCommand(unsigned nID) const {
    return nID == ID_LIST_ADD_NEW_IMAGE || nID == ID_LIST_INSERT_NEW_IMAGE;
}

void CInsertInfo::Create(CTavixDoc* doc, unsigned nID) {
    const bool atEnd = nID == ID_LIST_ADD_NEW_IMAGE;
    Start(doc, new CInsertCmd,
          [doc, atEnd](CCommand* cmd) { return static_cast<CInsertCmd*>(cmd)->Init(doc, atEnd); });
}

std::vector<std::string> CInsertInfo::GetSettingKeys() const {
    CInsertDlgData data;
    return DialogKeys(data);
}

namespace {
CInsertInfo g_insertInfo;
} // namespace
