#pragma once
// The run-time binding to the codec library: loading, the entry table, the
// callback table, and one wrapper per entry that answers the entry's
// "missing" result when the library lacks it, so callers never test the
// table themselves.

#include "tavix/records.h"

#include <cstdint>
#include <string>

using TavixReader = void*;
using TavixWriter = void*;
struct TavixBuildInfo;

// The 21 entries in table order, then the two data exports. Unresolved
// entries stay null.
struct TavixEntryTable {
    unsigned char (*init)();
    void (*restore)();
    TavixAbout* (*about)();
    int (*is)(intptr_t stream);
    int (*open)(TavixReader* reader, intptr_t stream, const char* path, int flag);
    TavixInfo* (*info)(TavixReader reader, int frame);
    unsigned char (*read)(TavixReader reader, TavixInfo* info, void* pixels, int32_t pitch);
    unsigned char (*close)(TavixReader reader);
    int (*wopen)(TavixWriter* writer, intptr_t stream, const char* path, int frames);
    unsigned char (*write)(TavixWriter writer, const TavixInfo* info, const void* pixels,
                           int32_t pitch);
    unsigned char (*wclose)(TavixWriter writer);
    intptr_t (*gopenstream)(void* first, void* second);
    intptr_t (*gopen)(const char* path, void* workarea);
    void (*set)(int driver);
    int (*get)();
    int (*find)(const char* shortname, int reserved);
    int (*count)();
    void (*freebitmap)(void* bitmap);
    int (*loadframe)(void* first, void* second);
    void (*installcallbacks64)(const TavixCallbacks* callbacks);
    int (*open12)(TavixReader* reader, intptr_t stream, const char* path);
    const TavixAbout* aboutData;   // TAVIXabout
    const TavixBuildInfo* ttfInfo; // TTFinfo
};

// Export names in table order, as the library spells them.
extern const char* const kTavixExportNames[21];

// Loads the library named by TAVIX_DRIVERNAME (default "tavix"), fills the
// table, installs the callbacks and calls init. False when the library
// cannot be loaded or its init is missing or fails.
bool TavixBind();
// Why the last TavixBind failed, in one line ("cannot load the codec library
// tavix: libtavix.so: cannot open shared object file: ..."); empty after a
// successful bind.
std::string TavixBindError();
// Calls restore when bound, then releases the library.
void TavixUnbind();
bool TavixIsBound();
const TavixEntryTable& TavixTable();
// The file the loader actually used (for the About box and messages).
std::string TavixLibraryPath();
// The library name TavixBind would load: TAVIX_DRIVERNAME or "tavix".
std::string TavixLibraryName();

// The callback table handed to the library: the library's file helpers and
// checked allocator, in slot order.
TavixCallbacks TavixProgramCallbacks();

// Wrappers, one per entry.
bool TavixInit();
void TavixRestore();
TavixAbout* TavixAboutDriver(); // caller frees with gfree
int TavixIs(intptr_t stream);
int TavixOpen(TavixReader* reader, intptr_t stream, const char* path, int flag);
TavixInfo* TavixFrameInfo(TavixReader reader, int frame); // caller frees with gfree
bool TavixRead(TavixReader reader, TavixInfo* info, void* pixels, int32_t pitch);
bool TavixClose(TavixReader reader);
bool TavixWOpen(TavixWriter* writer, intptr_t stream, const char* path, int frames);
bool TavixWrite(TavixWriter writer, const TavixInfo* info, const void* pixels, int32_t pitch);
bool TavixWClose(TavixWriter writer);
intptr_t TavixGOpen(const char* path, void* workarea);
void TavixSet(int driver);
int TavixGet();
int TavixFind(const char* shortname);
int TavixCount();
void TavixInstallCallbacks(const TavixCallbacks* callbacks);
const TavixAbout* TavixLibraryAbout(); // null when the library lacks it
