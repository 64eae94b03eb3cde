#pragma once
// The library's checked allocator and print hook.
//
// Every block the imaging library or the codec library hands out passes
// through galloc/gfree. Each block carries a "GMEM" header with its size and
// a "GEND" trailer, so a double free or an overwrite is caught and reported
// instead of corrupting the heap, and the live-block count lets tests prove
// that an operation freed everything it took. Setting GALLOCMAX in the
// environment makes galloc fail on purpose once that many blocks are live.

#include <cstdarg>
#include <cstddef>
#include <cstdint>

void* galloc(int32_t size);
int gfree(void* block);

// Asks the kernel to back the whole 2 MB pages inside [start, start + bytes)
// with huge pages, when the system leaves that to the program. Call it on a
// large buffer before its first write: a 64 MB image otherwise takes 16384
// page faults as it is filled, which costs more than decoding or resampling
// it. Smaller buffers, and systems without the feature, are left alone.
void advise_huge_pages(void* start, size_t bytes);

// Number of blocks handed out by galloc and not yet freed.
int32_t galloc_live_count();

// Forgets the cached GALLOCMAX so the next galloc reads it again. The limit
// is read once per process in normal use; tests change it between cases.
void galloc_reload_limit();

// printf-style hook through which every library message goes.
using GPrintHook = void (*)(const char* format, va_list args);

void gprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
void gvprintf(const char* format, va_list args);

// Installs a hook and returns the previous one; null restores the default,
// which formats into an 8192-character buffer and writes it to stderr.
GPrintHook gsetprinthook(GPrintHook hook);
