#include "app/cmds/ImageCmdSupport.h"

#include "app/doc/CurrentColours.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <algorithm>

CIdListInfo::CIdListInfo(std::initializer_list<unsigned> ids, Starter starter,
                         std::vector<std::string> settingKeys)
    : CCommandInfo(*ids.begin()), m_Ids(ids), m_Starter(std::move(starter)),
      m_Keys(std::move(settingKeys)) {}

bool CIdListInfo::IsCommand(unsigned nID) const {
    return std::find(m_Ids.begin(), m_Ids.end(), nID) != m_Ids.end();
}

void CIdListInfo::Create(CTavixDoc* doc, unsigned nID) {
    m_Starter(doc, nID);
}

bool FormatKeepsAttributeBits(const CTavixDoc* doc) {
    if (!doc || doc->GetFileType() < 0 || !TavixIsBound()) return false;
    // Asking about a driver makes it the library's current one; the
    // previous one is put back so that no reader or writer is surprised.
    const int previous = TavixGet();
    TavixSet(doc->GetFileType());
    TavixAboutPtr about(TavixAboutDriver());
    TavixSet(previous);
    return about && (about->caps & kCapAttributeBits) != 0;
}

CFillColours CFillColours::Current() {
    const CCurrentColour colour = ZyUi().GetCurrentColour(CCurrentColours::kFillNumber);
    return {static_cast<uint32_t>(colour.m_Index & 0xFF), colour.m_Argb};
}

uint32_t CFillColours::ForImage(const CTavixImage& image) const {
    return image.GetInfo()->bufferbpp <= 8 ? m_Index : m_Argb;
}

void OfferPreview(CDialogData& data, const CTavixDoc* doc, CDialogData::PreviewFn preview) {
    data.m_PreviewSource = doc ? doc->GetFocusImage() : nullptr;
    data.m_Preview = data.m_PreviewSource ? std::move(preview) : nullptr;
}
