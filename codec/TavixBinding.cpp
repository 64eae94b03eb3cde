#include "codec/TavixBinding.h"

#include "codec/LibraryLookup.h"

#include "imaging/galloc.h"
#include "imaging/gfile.h"

#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

const char* const kTavixExportNames[21] = {
    "TAVIX_init_0",   "TAVIX_restore_0",    "TAVIX_about_0",     "TAVIX_is_4",
    "TAVIX_open_16",  "TAVIX_info_8",       "TAVIX_read_16",     "TAVIX_close_4",
    "TAVIX_wopen_16", "TAVIX_write_16",     "TAVIX_wclose_4",    "TAVIX_gopenstream_8",
    "TAVIX_gopen_8",  "TAVIX_set_4",        "TAVIX_get_0",       "TAVIX_find_8",
    "TAVIX_count_0",  "TAVIX_freebitmap_4", "TAVIX_loadframe_8", "TAVIX_installcallbacks64_4",
    "TAVIX_open_12",
};

namespace {

void* g_library = nullptr;
TavixEntryTable g_table = {};
std::string g_path;
std::string g_bindError; // why the last bind failed

// The library prints through this; its lines join the program's output.
void forwardLibraryLine(const char* text) {
    gprintf("%s", text);
}

// Unbinding ends our use of the library but leaves it mapped: its C++
// runtime keeps small blocks from static initialisation, and unmapping the
// code that owns them only makes them look leaked.
constexpr int kLoadFlags = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;

void* loadLibrary(const std::string& name) {
    return LoadNamedLibrary(name, kLoadFlags);
}

template <typename T> void resolve(T& slot, const char* name) {
    slot = reinterpret_cast<T>(dlsym(g_library, name));
}

void fillTable() {
    void** slots = reinterpret_cast<void**>(&g_table);
    for (int i = 0; i < 21; ++i)
        slots[i] = dlsym(g_library, kTavixExportNames[i]);
    resolve(g_table.aboutData, "TAVIXabout");
    resolve(g_table.ttfInfo, "TTFinfo");
}

std::string loadedPath() {
    link_map* map = nullptr;
    if (dlinfo(g_library, RTLD_DI_LINKMAP, &map) == 0 && map && map->l_name) return map->l_name;
    return {};
}

} // namespace

static_assert(sizeof(TavixEntryTable) == 23 * sizeof(void*), "21 entries and two data exports");

std::string TavixLibraryName() {
    const char* name = getenv("TAVIX_DRIVERNAME");
    return name ? name : "tavix";
}

TavixCallbacks TavixProgramCallbacks() {
    return {gfopenread, gfopenwrite, gfclose, gfread, gfwrite,
            gfseek,     gfsize,      gftell,  galloc, gfree};
}

bool TavixBind() {
    if (g_library) TavixUnbind();
    g_bindError.clear();
    g_library = loadLibrary(TavixLibraryName());
    if (!g_library) {
        const char* reason = dlerror();
        g_bindError =
            "cannot load the codec library " + TavixLibraryName() + ": " + (reason ? reason : "");
        gprintf("%s\n", g_bindError.c_str());
        return false;
    }
    fillTable();
    g_path = loadedPath();
    TavixCallbacks callbacks = TavixProgramCallbacks();
    TavixInstallCallbacks(&callbacks);
    if (auto hook = reinterpret_cast<void (*)(void (*)(const char*))>(
            dlsym(g_library, "TAVIX_installprint_4")))
        hook(forwardLibraryLine);
    // The library stays loaded, as an unusable one.
    if (!g_table.init)
        g_bindError = "the codec library " + g_path + " has no init entry";
    else if (g_table.init() == 0)
        g_bindError = "the codec library " + g_path + " failed to start";
    return g_bindError.empty();
}

std::string TavixBindError() {
    return g_bindError;
}

void TavixUnbind() {
    if (!g_library) return;
    TavixRestore();
    dlclose(g_library);
    g_library = nullptr;
    g_table = {};
    g_path.clear();
}

bool TavixIsBound() {
    return g_library != nullptr;
}
const TavixEntryTable& TavixTable() {
    return g_table;
}
std::string TavixLibraryPath() {
    return g_path;
}

bool TavixInit() {
    return g_table.init && g_table.init() != 0;
}

void TavixRestore() {
    if (g_table.restore) g_table.restore();
}

TavixAbout* TavixAboutDriver() {
    return g_table.about ? g_table.about() : nullptr;
}

int TavixIs(intptr_t stream) {
    return g_table.is ? g_table.is(stream) : 0;
}

int TavixOpen(TavixReader* reader, intptr_t stream, const char* path, int flag) {
    if (g_table.open) return g_table.open(reader, stream, path, flag);
    if (g_table.open12) return g_table.open12(reader, stream, path);
    return 0;
}

TavixInfo* TavixFrameInfo(TavixReader reader, int frame) {
    return g_table.info ? g_table.info(reader, frame) : nullptr;
}

bool TavixRead(TavixReader reader, TavixInfo* info, void* pixels, int32_t pitch) {
    return g_table.read && g_table.read(reader, info, pixels, pitch) != 0;
}

bool TavixClose(TavixReader reader) {
    return g_table.close && g_table.close(reader) != 0;
}

bool TavixWOpen(TavixWriter* writer, intptr_t stream, const char* path, int frames) {
    return g_table.wopen && g_table.wopen(writer, stream, path, frames) != 0;
}

bool TavixWrite(TavixWriter writer, const TavixInfo* info, const void* pixels, int32_t pitch) {
    return g_table.write && g_table.write(writer, info, pixels, pitch) != 0;
}

bool TavixWClose(TavixWriter writer) {
    return g_table.wclose && g_table.wclose(writer) != 0;
}

intptr_t TavixGOpen(const char* path, void* workarea) {
    return g_table.gopen ? g_table.gopen(path, workarea) : 0;
}

void TavixSet(int driver) {
    if (g_table.set) g_table.set(driver);
}

int TavixGet() {
    return g_table.get ? g_table.get() : 0;
}

int TavixFind(const char* shortname) {
    return g_table.find ? g_table.find(shortname, 0) : 0;
}

int TavixCount() {
    return g_table.count ? g_table.count() : 0;
}

void TavixInstallCallbacks(const TavixCallbacks* callbacks) {
    if (g_table.installcallbacks64)
        g_table.installcallbacks64(callbacks);
    else
        gprintf("error - old tavix dll!\n");
}

const TavixAbout* TavixLibraryAbout() {
    return g_table.aboutData;
}
