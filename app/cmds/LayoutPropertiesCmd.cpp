#include "app/cmds/LayoutPropertiesCmd.h"

#include "app/doc/CommandIds.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "codec/LibraryLookup.h"
#include "plugins/LayoutPlugin.h"

#include <dlfcn.h>

namespace {

std::string& libraryName() {
    static std::string name = "layout";
    return name;
}

// The plug-in stays mapped after its handle is released: a plug-in's C++
// runtime keeps blocks from its static initialisation, which unmapping
// would only turn into apparent leaks.
void* loadPlugin() {
    return LoadNamedLibrary(libraryName(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
}

// Releases the plug-in on every way out.
struct PluginHandle {
    void* handle;
    ~PluginHandle() {
        if (handle) dlclose(handle);
    }
};

} // namespace

CLayoutPropertiesCmd::CLayoutPropertiesCmd() {
    m_Name = "Layout Properties";
}

void CLayoutPropertiesCmd::SetLibraryName(const std::string& name) {
    libraryName() = name;
}

const std::string& CLayoutPropertiesCmd::GetLibraryName() {
    return libraryName();
}

bool CLayoutPropertiesCmd::Init(CTavixDoc* doc) {
    m_pDoc = doc;
    CopySelection();
    if (PluginHandle probe{loadPlugin()}; !probe.handle) return false;
    Submit();
    return true;
}

std::unique_ptr<CTavixImage> CLayoutPropertiesCmd::FilterImage(CTavixImage* image) {
    PluginHandle plugin{loadPlugin()};
    std::unique_ptr<CTavixImage> edited;
    if (plugin.handle) edited = RunPlugin(plugin.handle, image);
    return edited ? std::move(edited) : image->Duplicate();
}

std::unique_ptr<CTavixImage> CLayoutPropertiesCmd::RunPlugin(void* library, CTavixImage* image) {
    auto edit = reinterpret_cast<EditLayoutImageFn>(dlsym(library, "EditLayoutImage"));
    auto release = reinterpret_cast<FreeLayoutImageFn>(dlsym(library, "FreeLayoutImage"));
    if (!edit || !release) return nullptr;
    const LayoutImage in{const_cast<TavixInfo*>(image->GetInfo()), image->GetBits(),
                         image->GetPitch()};
    LayoutImage out{};
    std::unique_ptr<CTavixImage> result;
    bool released = false;
    try {
        edit(&in, &out);
        if (out.info && out.pixels && out.info->width > 0 && out.info->height > 0) {
            result = std::make_unique<CTavixImage>();
            result->SetInformation(*out.info);
            result->LoadPixelRows({out.info, out.pixels, out.rowbytes});
            result->TakeModifiedMark();
            result->m_OnWorksheet = image->m_OnWorksheet;
        }
        released = true;
        release(&out);
    } catch (...) {
        ZyUi().MessageBox(
            "There is an error in the layout library.  Contact the author of the library.",
            MsgButtons::OK, MsgIcon::Error);
        result.reset();
        if (!released) try {
                release(&out);
            } catch (...) {
            }
    }
    return result;
}

CLayoutPropertiesInfo::CLayoutPropertiesInfo()
    : CCommandInfo(ID_LAYOUT_PROPERTIES, [] { return new CLayoutPropertiesCmd; }) {}

namespace {
CLayoutPropertiesInfo g_layoutPropertiesInfo;
} // namespace
