#include "tavix/core/Host.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tavix {
namespace {

// Used until the program installs its own callbacks, so the library also
// works on its own (for example under a fuzzer).
intptr_t plainOpenRead(const char* path) {
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    return fd <= 0 ? 0 : fd;
}
intptr_t plainOpenWrite(const char* path) {
    int fd = open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return fd <= 0 ? 0 : fd;
}
int plainClose(intptr_t s) {
    return s == 0 || close(static_cast<int>(s)) == 0;
}
int32_t plainRead(intptr_t s, void* b, int32_t n) {
    return static_cast<int32_t>(read(static_cast<int>(s), b, static_cast<size_t>(n)));
}
int32_t plainWrite(intptr_t s, const void* b, int32_t n) {
    return static_cast<int32_t>(write(static_cast<int>(s), b, static_cast<size_t>(n)));
}
int plainSeek(intptr_t s, uint32_t low, int32_t high) {
    off_t at = static_cast<off_t>((static_cast<uint64_t>(static_cast<uint32_t>(high)) << 32) | low);
    return lseek(static_cast<int>(s), at, SEEK_SET) >= 0;
}
int64_t plainTell(intptr_t s) {
    return lseek(static_cast<int>(s), 0, SEEK_CUR);
}
int64_t plainSize(intptr_t s) {
    off_t at = lseek(static_cast<int>(s), 0, SEEK_CUR);
    off_t end = lseek(static_cast<int>(s), 0, SEEK_END);
    lseek(static_cast<int>(s), at, SEEK_SET);
    return end < 0 ? 0 : end;
}
void* plainAlloc(int32_t n) {
    return n > 0 ? malloc(static_cast<size_t>(n)) : nullptr;
}
int plainFree(void* p) {
    free(p);
    return 1;
}

TavixCallbacks g_host = {plainOpenRead, plainOpenWrite, plainClose, plainRead,  plainWrite,
                         plainSeek,     plainSize,      plainTell,  plainAlloc, plainFree};

void (*g_printHook)(const char*) = nullptr;

} // namespace

const TavixCallbacks& host() {
    return g_host;
}

void installHost(const TavixCallbacks* callbacks) {
    if (callbacks) g_host = *callbacks;
}

void* hostAllocate(size_t bytes) {
    // The host allocator counts in signed 32-bit sizes.
    if (bytes == 0) bytes = 1;
    if (bytes > 0x7FFFFF00u) throw std::bad_alloc();
    void* block = g_host.alloc(static_cast<int32_t>(bytes));
    if (!block) throw std::bad_alloc();
    return block;
}

void hostRelease(void* block) noexcept {
    if (block) g_host.free(block);
}

void installPrintHook(void (*hook)(const char*)) {
    g_printHook = hook;
}

void report(const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    if (g_printHook)
        g_printHook(text);
    else
        fputs(text, stderr);
}

} // namespace tavix
