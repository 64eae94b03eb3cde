#include "imaging/galloc.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace {

constexpr uintptr_t kHugePage = uintptr_t{2} << 20;
// Blocks from this size up are scratch images, worth huge pages.
constexpr int32_t kHugeBlock = 4 << 20;

constexpr int32_t kOverhead = 12; // header (sentinel + size) and trailer
constexpr uint32_t kNoLimit = 0xFFFFFFFFu;

int32_t g_live = 0;
uint32_t g_limit = 0; // 0 = not read yet (and re-read while it stays 0)

void defaultPrintHook(const char* format, va_list args) {
    char buffer[8192];
    vsnprintf(buffer, sizeof buffer, format, args);
    fprintf(stderr, "%s", buffer);
}

GPrintHook g_hook = defaultPrintHook;

uint32_t readLimit() {
    const char* text = getenv("GALLOCMAX");
    if (!text) return kNoLimit;
    return static_cast<uint32_t>(atoi(text));
}

bool sentinelIs(const unsigned char* at, const char* tag) {
    return memcmp(at, tag, 4) == 0;
}

} // namespace

void* galloc(int32_t size) {
    if (size <= 0) {
        gprintf("galloc - INVALID SIZE %ld\n", static_cast<long>(size));
        return nullptr;
    }
    if (g_limit == 0) g_limit = readLimit();
    if (static_cast<uint32_t>(g_live) == g_limit) {
        gprintf("galloc - ERROR, PURPOSELY FAILING ON GALLOC COUNT %d, SIZE %ld\n", g_live,
                static_cast<long>(size));
        return nullptr;
    }
    auto* block = static_cast<unsigned char*>(malloc(static_cast<size_t>(size) + kOverhead));
    if (!block || block == reinterpret_cast<unsigned char*>(~uintptr_t{0})) {
        gprintf("galloc - FAILED. OUT OF MEMORY. SIZE REQUESTED %ld\n", static_cast<long>(size));
        return nullptr;
    }
    if (size >= kHugeBlock) advise_huge_pages(block, static_cast<size_t>(size) + kOverhead);
    memcpy(block, "GMEM", 4);
    memcpy(block + 4, &size, 4);
    memcpy(block + 8 + size, "GEND", 4);
    ++g_live;
    return block + 8;
}

int gfree(void* pointer) {
    auto value = reinterpret_cast<intptr_t>(pointer);
    if (value > -2048 && value < 2048) {
        gprintf("gfree - ATTEMPT TO FREE NULL POINTER\n");
        return 0;
    }
    auto* block = static_cast<unsigned char*>(pointer) - 8;
    int32_t size = 0;
    memcpy(&size, block + 4, 4);
    if (sentinelIs(block, "GMEM") && size > 0 && sentinelIs(block + 8 + size, "GEND")) {
        memcpy(block, "GFRE", 4);
        free(block);
        --g_live;
        return 1;
    }
    // A damaged or already freed block is leaked: releasing it could corrupt the heap.
    if (sentinelIs(block, "GFRE"))
        gprintf("gfree - ATTEMPT TO FREE MEMORY TWICE\n");
    else
        gprintf("gfree - SENTINAL CORRUPTED; PROBABLE MEMORY DATA CORRUPTION\n");
    return 0;
}

void advise_huge_pages(void* start, size_t bytes) {
#ifdef MADV_HUGEPAGE
    const auto begin = reinterpret_cast<uintptr_t>(start);
    const uintptr_t first = (begin + kHugePage - 1) & ~(kHugePage - 1);
    const uintptr_t end = (begin + bytes) & ~(kHugePage - 1);
    // Advice only: where it is refused the pages are simply small.
    if (end > first) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#else
    (void)start;
    (void)bytes;
#endif
}

int32_t galloc_live_count() {
    return g_live;
}

void galloc_reload_limit() {
    g_limit = 0;
}

void gvprintf(const char* format, va_list args) {
    g_hook(format, args);
}

void gprintf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    gvprintf(format, args);
    va_end(args);
}

GPrintHook gsetprinthook(GPrintHook hook) {
    GPrintHook previous = g_hook;
    g_hook = hook ? hook : defaultPrintHook;
    return previous;
}
