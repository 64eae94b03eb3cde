#pragma once
// The entry points libtavix.so exports, with C linkage. Each name is the
// standard-call decoration of the original interface with '@' spelled '_'
// (the trailing number is the byte count of the arguments).

#include "tavix/records.h"

#pragma GCC visibility push(default)
extern "C" {
using TavixReader = void*;
using TavixWriter = void*;

unsigned char TAVIX_init_0();
void TAVIX_restore_0();
TavixAbout* TAVIX_about_0();
int TAVIX_is_4(intptr_t stream);
int TAVIX_open_16(TavixReader* reader, intptr_t stream, const char* path, int flag);
TavixInfo* TAVIX_info_8(TavixReader reader, int frame);
unsigned char TAVIX_read_16(TavixReader reader, TavixInfo* info, void* pixels, int32_t pitch);
unsigned char TAVIX_close_4(TavixReader reader);
int TAVIX_wopen_16(TavixWriter* writer, intptr_t stream, const char* path, int frames);
unsigned char TAVIX_write_16(TavixWriter writer, const TavixInfo* info, const void* pixels,
                             int32_t pitch);
unsigned char TAVIX_wclose_4(TavixWriter writer);
intptr_t TAVIX_gopenstream_8(void* first, void* second);
intptr_t TAVIX_gopen_8(const char* path, void* workarea);
void TAVIX_set_4(int driver);
int TAVIX_get_0();
int TAVIX_find_8(const char* shortname, int reserved);
int TAVIX_count_0();
void TAVIX_freebitmap_4(void* bitmap);
int TAVIX_loadframe_8(void* first, void* second);
void TAVIX_installcallbacks64_4(const TavixCallbacks* callbacks);
int TAVIX_open_12(TavixReader* reader, intptr_t stream, const char* path);

// Not one of the 21 table entries: routes the library's messages to the
// program's print hook (looked up separately by the binding).
void TAVIX_installprint_4(void (*hook)(const char* text));

extern TavixAbout TAVIXabout;

// Build information about the library itself.
struct TavixBuildInfo {
    char name[32];
    char version[32];
    int32_t drivers;
};
extern TavixBuildInfo TTFinfo;
}
#pragma GCC visibility pop
