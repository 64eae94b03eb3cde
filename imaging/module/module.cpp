#include "imaging/module/module.h"

#include "imaging/galloc.h"
#include "imaging/module/table.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

int32_t g_current = 0;

const ModuleEntry& current() {
    return *g_moduleTable[g_current];
}

char foldAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whole-string comparison that folds only 'A'..'Z'; no locale is involved.
bool sameName(const char* a, const char* b) {
    for (; *a && *b; ++a, ++b)
        if (foldAscii(*a) != foldAscii(*b)) return false;
    return *a == *b;
}

// Runs the current module into a new image; see module_run_new.
int runCurrentIntoNew(int32_t imageCount, const ImageEntry* images, int32_t valueCount,
                      const ModuleValue* values, int32_t rowAlign, ModuleResult* result) {
    if (!result) return 0;
    *result = ModuleResult{};
    ModuleInstance* instance = nullptr;
    if (!module_open(&instance, imageCount, images, valueCount, values)) return 0;
    ModuleResult made{};
    made.info = module_query(instance, 0);
    int ok = made.info != nullptr &&
             module_alloc_pixels(made.info, rowAlign, &made.pixels, &made.rowbytes) &&
             module_process(instance, made.info, made.pixels, made.rowbytes);
    int closed = module_close(instance);
    if (ok && closed) {
        *result = made;
        return 1;
    }
    module_result_free(&made);
    return 0;
}

} // namespace

int32_t module_count() {
    int32_t n = 0;
    while (g_moduleTable[n])
        ++n;
    return n;
}

int32_t module_select(int32_t index) {
    g_current = (index >= 0 && index < module_count()) ? index : 0;
    return g_current;
}

int32_t module_current() {
    return g_current;
}

int32_t module_find(const char* name) {
    if (!name) name = "";
    int32_t count = module_count();
    for (int32_t i = 0; i < count; ++i) {
        module_select(i);
        ModuleDescriptor* d = module_describe();
        if (!d) continue;
        char own[sizeof d->name + 1] = {};
        memcpy(own, d->name, sizeof d->name);
        gfree(d);
        if (sameName(own, name)) return i;
    }
    return module_select(0);
}

ModuleDescriptor* module_describe() {
    return current().describe ? current().describe() : nullptr;
}

int module_open(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                int32_t valueCount, const ModuleValue* values) {
    if (!current().open) {
        if (out) *out = nullptr;
        return 0;
    }
    return current().open(out, imageCount, images, valueCount, values);
}

TavixInfo* module_query(ModuleInstance* instance, int32_t index) {
    return current().query ? current().query(instance, index) : nullptr;
}

int module_process(ModuleInstance* instance, const TavixInfo* result, void* pixels,
                   int32_t rowbytes) {
    return current().process ? current().process(instance, result, pixels, rowbytes) : 0;
}

int module_close(ModuleInstance* instance) {
    return current().close ? current().close(instance) : 0;
}

void module_result_free(ModuleResult* result) {
    if (!result) return;
    if (result->info) gfree(result->info);
    if (result->pixels) gfree(result->pixels);
    *result = ModuleResult{};
}

int32_t module_pixel_bytes(const TavixInfo* info) {
    return info->bufferbpp <= 8 ? 1 : 4;
}

int module_alloc_pixels(const TavixInfo* info, int32_t rowAlign, uint8_t** pixels,
                        int32_t* rowbytes) {
    *pixels = nullptr;
    *rowbytes = 0;
    if (!info || info->width <= 0 || info->height <= 0) {
        gprintf("module - bad result size\n");
        return 0;
    }
    if (rowAlign < 1) rowAlign = 1;
    int64_t row = static_cast<int64_t>(info->width) * module_pixel_bytes(info);
    row = (row + rowAlign - 1) / rowAlign * rowAlign;
    int64_t total = row * info->height;
    if (total > INT32_MAX) {
        gprintf("module - result of %d x %d is too large\n", info->width, info->height);
        return 0;
    }
    auto* block = static_cast<uint8_t*>(galloc(static_cast<int32_t>(total)));
    if (!block) return 0;
    memset(block, 0, static_cast<size_t>(total));
    *pixels = block;
    *rowbytes = static_cast<int32_t>(row);
    return 1;
}

int module_run_in_place(int32_t index, const TavixInfo* info, void* pixels, int32_t rowbytes,
                        int32_t valueCount, const ModuleValue* values) {
    module_select(index);
    // Describing first lets a module set itself up before it is opened.
    if (ModuleDescriptor* d = module_describe()) gfree(d);
    ImageEntry entry{info, pixels, rowbytes};
    ModuleInstance* instance = nullptr;
    if (!module_open(&instance, 1, &entry, valueCount, values)) return 0;
    int processed = module_process(instance, info, pixels, rowbytes);
    int closed = module_close(instance);
    return processed ? closed : 0;
}

int module_run_new(int32_t index, int32_t imageCount, const ImageEntry* images, int32_t valueCount,
                   const ModuleValue* values, int32_t rowAlign, ModuleResult* result) {
    module_select(index);
    return runCurrentIntoNew(imageCount, images, valueCount, values, rowAlign, result);
}

int module_run_named(const char* name, int32_t imageCount, const ImageEntry* images,
                     int32_t valueCount, const ModuleValue* values, ModuleResult* result) {
    int32_t caller = module_current();
    module_find(name);
    int ok = runCurrentIntoNew(imageCount, images, valueCount, values, 1, result);
    module_select(caller);
    return ok;
}

namespace {

bool parseInteger(const char* text, int64_t* out) {
    errno = 0;
    char* end = nullptr;
    long long v = strtoll(text, &end, 0);
    if (errno || end == text || *end) return false;
    if (v < INT32_MIN || v > static_cast<long long>(UINT32_MAX)) return false;
    *out = v;
    return true;
}

bool parseReal(const char* text, double* out) {
    errno = 0;
    char* end = nullptr;
    double v = strtod(text, &end);
    if (errno || end == text || *end) return false;
    *out = v;
    return true;
}

// Index of `text` among the comma-separated names of `choices`, or -1.
int32_t choiceIndex(const char* choices, const char* text) {
    int32_t index = 0;
    const char* start = choices;
    for (;;) {
        const char* comma = strchr(start, ',');
        size_t len = comma ? static_cast<size_t>(comma - start) : strlen(start);
        size_t i = 0;
        while (i < len && text[i] && foldAscii(start[i]) == foldAscii(text[i]))
            ++i;
        if (i == len && text[len] == '\0' && len > 0) return index;
        if (!comma) return -1;
        start = comma + 1;
        ++index;
    }
}

} // namespace

int module_value_from_text(const ModuleParam* param, const char* text, ModuleValue* out) {
    if (!text || !out) return 0;
    int64_t integer = 0;
    double real = 0;
    if (param && (param->type & 3) == kParamReal) {
        if (!parseReal(text, &real)) return 0;
        *out = ModuleValue::ofReal(real);
        return 1;
    }
    if (parseInteger(text, &integer)) {
        *out = ModuleValue::ofUint(static_cast<uint32_t>(integer));
        return 1;
    }
    if (param) {
        char choices[sizeof param->choices + 1] = {};
        memcpy(choices, param->choices, sizeof param->choices);
        int32_t index = choiceIndex(choices, text);
        if (index < 0) return 0;
        *out = ModuleValue::ofInt(index);
        return 1;
    }
    if (!parseReal(text, &real)) return 0;
    *out = ModuleValue::ofReal(real);
    return 1;
}
