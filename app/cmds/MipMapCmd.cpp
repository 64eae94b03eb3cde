#include "app/cmds/MipMapCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/Exceptions.h"
#include "app/doc/Hints.h"
#include "app/doc/ProgressDlg.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* kSection = "CMipMapCmd";
constexpr const char* kMethodSection = "CMipMapMeth";
constexpr int kTrueColourMethod = 2; // Size with Lanczos3

// Frees a module instance on every way out.
struct OpenModule {
    ModuleInstance* instance = nullptr;
    ~OpenModule() {
        if (instance) module_close(instance);
    }
};

} // namespace

CMipMapCmd::CMipMapCmd() {
    m_Name = "Mip Map";
    m_bCanUndo = true;
    m_Count = std::clamp(GetProfileInt(kSection, "m_Count", 1), int{kMinCount}, int{kMaxCount});
    m_Method = std::clamp(GetProfileInt(kMethodSection, "m_Method", 0), 0, kMipMapMethodCount - 1);
}

bool CMipMapCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    CMipMapDlgData count;
    count.m_Count = m_Count;
    if (!ZyUi().EditDialog(count)) return false;
    m_Count = std::clamp(count.m_Count, int{kMinCount}, int{kMaxCount});
    doc->GetSelectionMask(m_Range);
    bool indexed = false;
    for (int i = 0; i < m_Range.GetSize(); ++i)
        if (m_Range.IsSelected(i) && doc->GetImageAt(i) &&
            doc->GetImageAt(i)->GetInfo()->bufferbpp <= 8)
            indexed = true;
    if (indexed) {
        CMipMapMethData method;
        method.m_Method = m_Method;
        if (!ZyUi().EditDialog(method)) return false;
        m_Method = std::clamp(method.m_Method, 0, kMipMapMethodCount - 1);
        WriteProfileInt(kMethodSection, "m_Method", m_Method);
    }
    WriteProfileInt(kSection, "m_Count", m_Count);
    Submit();
    return true;
}

int CMipMapCmd::MakeLevels(int position) {
    CTavixImage* source = m_pDoc->GetImageAt(position);
    const TavixInfo& info = *source->GetInfo();
    const int method =
        info.bufferbpp <= 8 ? kMipMapMethods[m_Method].m_ModuleMethod : kTrueColourMethod;
    // Levels counts the source itself as level 0.
    const ModuleValue values[] = {ModuleValue::ofInt(method), ModuleValue::ofInt(m_Count + 1),
                                  ModuleValue::ofInt(1), ModuleValue::ofInt(info.width),
                                  ModuleValue::ofInt(info.height)};
    module_find("Mipmap");
    const ImageEntry entry = source->GetEntry();
    OpenModule run;
    if (!module_open(&run.instance, 1, &entry, static_cast<int32_t>(std::size(values)), values))
        return 0;

    m_Marked.emplace_back(source, info.attributes);
    source->GetInfoForWrite()->attributes |= kAttrMipLevel;
    int made = 0;
    for (int level = 0;; ++level) {
        GPtr<TavixInfo> record(module_query(run.instance, level));
        if (!record) break;
        auto image = std::make_unique<CTavixImage>();
        image->SetInformation(*record);
        TavixInfo* out = image->GetInfoForWrite();
        // Every level is written in turn, the source's copy too.
        if (!module_process(run.instance, out, image->GetBits(), image->GetPitch())) break;
        if (level == 0) continue;
        snprintf(out->framename, sizeof out->framename, "mm%d", level);
        out->attributes |= kAttrMipLevel;
        image->m_OnWorksheet = source->m_OnWorksheet;
        CTavixImage* inserted = image.release();
        m_pDoc->InsertImage(position + made, inserted);
        m_Levels.push_back(inserted);
        ++made;
    }
    return made;
}

void CMipMapCmd::Do() {
    m_Levels.clear();
    m_Marked.clear();
    std::vector<int> positions;
    for (int i = std::min(m_Range.GetSize(), m_pDoc->GetImageCount()) - 1; i >= 0; --i)
        if (m_Range.IsSelected(i)) positions.push_back(i);
    CProgressDlg progress("Creating Mip Maps");
    progress.Create();
    progress.SetRange(0, static_cast<int>(positions.size()));
    int done = 0;
    for (int position : positions) {
        char text[32];
        snprintf(text, sizeof text, "(%d/%d)", done, static_cast<int>(positions.size()));
        progress.SetStatus(text);
        if (progress.CheckCancelButton()) break;
        if (const int made = MakeLevels(position)) {
            CInsertHint hint(position + 1, made);
            m_pDoc->UpdateAllViews(nullptr, 0, &hint);
        }
        progress.StepIt();
        ++done;
    }
    progress.DestroyWindow();
}

void CMipMapCmd::Undo() {
    CRange removed(m_pDoc->GetImageCount());
    for (int i = m_pDoc->GetImageCount() - 1; i >= 0; --i)
        if (std::find(m_Levels.begin(), m_Levels.end(), m_pDoc->GetImageAt(i)) != m_Levels.end())
            removed.SetAt(i, 1);
    for (int i = removed.GetSize() - 1; i >= 0; --i)
        if (removed.IsSelected(i)) m_pDoc->RemoveImage(i);
    m_Levels.clear();
    for (auto& [source, attributes] : m_Marked)
        source->GetInfoForWrite()->attributes = attributes;
    m_Marked.clear();
    CDeleteHint hint(removed);
    m_pDoc->UpdateAllViews(nullptr, 0, &hint);
}

std::vector<CDialogField> CMipMapDlgData::GetFields() {
    return {{"m_Count", CDialogField::Integer, &m_Count, CMipMapCmd::kMinCount,
             CMipMapCmd::kMaxCount, "", "Number of mip maps to create:"}};
}

std::vector<CDialogField> CMipMapMethData::GetFields() {
    return {{"m_Method", CDialogField::Choice, &m_Method, 0, kMipMapMethodCount - 1,
             "Halfsize,Scale,Shared palette", "Method"}};
}

CMipMapInfo::CMipMapInfo() : CCommandInfo(ID_CREATE_MIP_MAPS, [] { return new CMipMapCmd; }) {}

std::vector<std::string> CMipMapInfo::GetSettingKeys() const {
    CMipMapDlgData count;
    CMipMapMethData method;
    std::vector<std::string> keys = DialogKeys(count);
    for (std::string& key : DialogKeys(method))
        keys.push_back(std::move(key));
    return keys;
}

namespace {
CMipMapInfo g_mipMapInfo;
} // namespace
