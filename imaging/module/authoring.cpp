#include "imaging/module/authoring.h"

#include "imaging/galloc.h"

#include <climits>
#include <cmath>
#include <cstring>

const char kModuleAuthor[] = "Nadir Tools";

namespace {

// Copies text into a fixed field, always leaving it NUL-terminated.
template <size_t N> void putText(char (&field)[N], const char* text) {
    if (!text) return;
    strncpy(field, text, N - 1);
    field[N - 1] = '\0';
}

ModuleValue encode(uint32_t type, double value) {
    if ((type & 3) == kParamReal) return ModuleValue::ofReal(value);
    // Through 64 bits so that both -1 and 4294967295 land as 0xFFFFFFFF.
    return ModuleValue::ofUint(static_cast<uint32_t>(static_cast<int64_t>(value)));
}

void fillParam(ModuleParam& out, const ModuleParamDecl& decl) {
    out.type = decl.type;
    out.minimum = encode(decl.type, decl.minimum);
    out.maximum = encode(decl.type, decl.maximum);
    out.defaultValue = encode(decl.type, decl.defaultValue);
    putText(out.name, decl.name);
    putText(out.choices, decl.choices);
}

const ModuleValue* slot(const ModuleInstance* instance, int32_t index) {
    if (!instance || !instance->values || index < 0 || index >= instance->valueCount)
        return nullptr;
    return &instance->values[index];
}

const ModuleParamDecl* declared(const ModuleDecl& decl, int32_t index) {
    if (index < 0 || static_cast<size_t>(index) >= decl.params.size()) return nullptr;
    return &decl.params[static_cast<size_t>(index)];
}

} // namespace

uint32_t module_magic(const char* code) {
    uint32_t magic = 0;
    for (int i = 0; code && i < 4 && code[i]; ++i)
        magic = (magic << 8) | static_cast<uint8_t>(code[i]);
    return magic;
}

ModuleDescriptor* module_build_descriptor(const ModuleDecl& decl) {
    auto* d = static_cast<ModuleDescriptor*>(galloc(sizeof(ModuleDescriptor)));
    if (!d) return nullptr;
    memset(d, 0, sizeof *d);
    d->magic = module_magic(decl.magic);
    d->size = kModuleDescriptorSize;
    d->interfaceVersion = kModuleInterfaceVersion;
    d->flags = decl.flags;
    d->minImages = 1;
    d->images = decl.images;
    d->secondCount = decl.secondCount;
    putText(d->author, kModuleAuthor);
    putText(d->version, decl.version);
    putText(d->name, decl.name);
    putText(d->description, decl.description);
    size_t count = decl.params.size() < kModuleMaxParams ? decl.params.size() : kModuleMaxParams;
    d->paramCount = static_cast<uint32_t>(count);
    for (size_t i = 0; i < count; ++i)
        fillParam(d->params[i], decl.params[i]);
    return d;
}

int32_t module_value_int(const ModuleInstance* instance, int32_t index, int32_t fallback) {
    const ModuleValue* v = slot(instance, index);
    return v ? v->asInt() : fallback;
}

uint32_t module_value_uint(const ModuleInstance* instance, int32_t index, uint32_t fallback) {
    const ModuleValue* v = slot(instance, index);
    return v ? v->asUint() : fallback;
}

double module_value_real(const ModuleInstance* instance, int32_t index, double fallback) {
    const ModuleValue* v = slot(instance, index);
    return v ? v->asReal() : fallback;
}

double module_value_number(const ModuleInstance* instance, int32_t index, double fallback) {
    const ModuleValue* v = slot(instance, index);
    if (!v) return fallback;
    uint32_t high;
    memcpy(&high, v->bytes + 4, sizeof high);
    return high == 0 ? static_cast<double>(v->asInt()) : v->asReal();
}

int32_t module_value_int(const ModuleInstance* instance, const ModuleDecl& decl, int32_t index) {
    return static_cast<int32_t>(module_value_uint(instance, decl, index));
}

uint32_t module_value_uint(const ModuleInstance* instance, const ModuleDecl& decl, int32_t index) {
    const ModuleParamDecl* p = declared(decl, index);
    uint32_t fallback = p ? encode(kParamInteger, p->defaultValue).asUint() : 0;
    return module_value_uint(instance, index, fallback);
}

double module_value_real(const ModuleInstance* instance, const ModuleDecl& decl, int32_t index) {
    const ModuleParamDecl* p = declared(decl, index);
    return module_value_real(instance, index, p ? p->defaultValue : 0.0);
}

bool module_info_ok(const TavixInfo* info) {
    if (!info || info->size < kTavixInfoSize) return false;
    if (info->width <= 0 || info->height <= 0) return false;
    int64_t row = static_cast<int64_t>(info->width) * module_pixel_bytes(info);
    return row <= INT32_MAX && row * info->height <= INT32_MAX;
}

int32_t module_row_length(const TavixInfo* info) {
    return info->width * module_pixel_bytes(info);
}

int32_t module_hotspot_count(const TavixInfo* info) {
    if (info->numhotspots < 0) return 0;
    return info->numhotspots < kTavixMaxHotSpots ? info->numhotspots : kTavixMaxHotSpots;
}

TavixInfo* module_copy_info(const TavixInfo* info) {
    if (!info || info->size < kTavixInfoSize) {
        gprintf("module - bad image information record (size %d)\n", info ? info->size : 0);
        return nullptr;
    }
    auto* copy = static_cast<TavixInfo*>(galloc(info->size));
    if (copy) memcpy(copy, info, static_cast<size_t>(info->size));
    return copy;
}

int module_open_instance(const ModuleDecl& decl, ModuleInstance** out, int32_t imageCount,
                         const ImageEntry* images, int32_t valueCount, const ModuleValue* values,
                         int32_t minImages, int32_t instanceSize) {
    if (!out) return 0;
    *out = nullptr;
    bool imagesOk = images && imageCount >= minImages && imageCount >= 1;
    for (int32_t i = 0; imagesOk && i < imageCount; ++i)
        imagesOk = module_info_ok(images[i].info);
    if (!imagesOk) {
        gprintf("%s - needs %d usable image(s), got %d\n", decl.name, minImages, imageCount);
        return 0;
    }
    if (instanceSize < static_cast<int32_t>(sizeof(ModuleInstance)))
        instanceSize = sizeof(ModuleInstance);
    auto* instance = static_cast<ModuleInstance*>(galloc(instanceSize));
    if (!instance) return 0;
    memset(instance, 0, static_cast<size_t>(instanceSize));
    instance->state = 1;
    instance->imageCount = imageCount;
    instance->images = images;
    // A negative count or a missing array both mean "no values": every
    // reader then takes its default.
    instance->valueCount = values && valueCount > 0 ? valueCount : 0;
    instance->values = values;
    *out = instance;
    return 1;
}

int module_close_instance(ModuleInstance* instance) {
    if (!instance) return 0;
    instance->state = 0;
    return gfree(instance);
}

bool module_instance_ok(const ModuleInstance* instance) {
    return instance && instance->state == 1 && instance->images && instance->imageCount >= 1 &&
           instance->images[0].info;
}

namespace {

// The checks every process call makes before writing a result; with
// `sameSize` the result must also have the input's width and height.
bool checkResult(const ModuleDecl& decl, const ModuleInstance* instance, const TavixInfo* result,
                 const void* pixels, int32_t rowbytes, bool sameSize) {
    const char* problem = nullptr;
    if (!module_instance_ok(instance)) {
        problem = "not open";
    } else {
        const ImageEntry& in = instance->images[0];
        if (!in.pixels || in.rowbytes < module_row_length(in.info))
            problem = "bad input pixels";
        else if (!result || !pixels || !module_info_ok(result))
            problem = "bad result";
        else if (module_pixel_bytes(result) != module_pixel_bytes(in.info))
            problem = "result differs from input in depth";
        else if (sameSize && (result->width != in.info->width || result->height != in.info->height))
            problem = "result differs from input in size";
        else if (rowbytes < module_row_length(result))
            problem = "result rows too short";
    }
    if (problem) gprintf("%s - %s\n", decl.name, problem);
    return problem == nullptr;
}

} // namespace

bool module_check_same_shape(const ModuleDecl& decl, const ModuleInstance* instance,
                             const TavixInfo* result, const void* pixels, int32_t rowbytes) {
    return checkResult(decl, instance, result, pixels, rowbytes, true);
}

bool module_check_resized(const ModuleDecl& decl, const ModuleInstance* instance,
                          const TavixInfo* result, const void* pixels, int32_t rowbytes) {
    return checkResult(decl, instance, result, pixels, rowbytes, false);
}
