// The quantizer table: 12 entries in a fixed order, the current selection,
// the calls on the current quantizer, and the null quantizer (entries 0,
// 5 and 6), which makes nothing.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/quant/entries.h"
#include "imaging/quant/internal.h"

#include <cstdio>
#include <cstring>

namespace quant {

uint32_t magic_of(const char* code) {
    return module_magic(code);
}

QuantDescriptor* build_descriptor(const Decl& decl) {
    auto* d = static_cast<QuantDescriptor*>(galloc(sizeof(QuantDescriptor)));
    if (!d) return nullptr;
    memset(d, 0, sizeof *d);
    d->magic = magic_of(decl.magic);
    d->size = kQuantDescriptorSize;
    d->interfaceVersion = kQuantInterfaceVersion;
    d->flags = decl.flags;
    snprintf(d->author, sizeof d->author, "%s", kModuleAuthor);
    snprintf(d->version, sizeof d->version, "%s", decl.version);
    snprintf(d->name, sizeof d->name, "%s", decl.name);
    snprintf(d->description, sizeof d->description, "%s", decl.description);
    return d;
}

QuantInstance* new_instance(const Decl& decl, int32_t bytes, void (*destroy)(QuantInstance*)) {
    auto* q = static_cast<QuantInstance*>(galloc(bytes));
    if (!q) return nullptr;
    memset(q, 0, static_cast<size_t>(bytes));
    q->magic = magic_of(decl.magic);
    q->version = 4;
    q->destroy = destroy;
    return q;
}

namespace {

const Decl kNil{"NILC", "Nil", "Nil", "1.03", kQuantFlagNull};

QuantDescriptor* describeNil() {
    return build_descriptor(kNil);
}
QuantInstance* beginNil() {
    return nullptr;
}
int addNil(QuantInstance*, const TavixInfo*, const void*, int32_t) {
    return 0;
}
uint32_t* makeNil(QuantInstance*, int32_t, QuantInverseMap** map, int32_t* count) {
    if (map) *map = nullptr;
    if (count) *count = 0;
    return nullptr;
}

constexpr QuantEntry kNilEntry{describeNil, beginNil, addNil, makeNil};

const QuantEntry kTable[kQuantCount] = {
    kNilEntry,
    {describe_wu666, begin_wu666, add_wu, make_wu},
    {describe_tw, begin_tw, add_tw, make_tw},
    {describe_wu777, begin_wu777, add_wu, make_wu},
    {describe_mq, begin_mq, add_wu, make_mq},
    kNilEntry,
    kNilEntry,
    {describe_exact, begin_exact, add_exact, make_exact},
    {describe_wu4d, begin_wu4d, add_wu, make_wu},
    {describe_wu555, begin_wu555, add_wu, make_wu},
    {describe_wuve, begin_wuve, add_wu, make_wuve},
    {describe_lloyd, begin_lloyd, add_wu, make_lloyd},
};

int32_t g_current = 0;
bool g_diagnostics = false;

bool sameName(const char* a, const char* b) {
    for (;; ++a, ++b) {
        char x = *a >= 'A' && *a <= 'Z' ? static_cast<char>(*a - 'A' + 'a') : *a;
        char y = *b >= 'A' && *b <= 'Z' ? static_cast<char>(*b - 'A' + 'a') : *b;
        if (x != y) return false;
        if (!x) return true;
    }
}

} // namespace

} // namespace quant

using quant::g_current;
using quant::kTable;

int32_t quant_select(int32_t index) {
    g_current = index >= 0 && index < kQuantCount ? index : 0;
    return g_current;
}

int32_t quant_current() {
    return g_current;
}

const char* quant_name(int32_t index) {
    static char names[kQuantCount][16];
    if (index < 0 || index >= kQuantCount) return "";
    if (!names[index][0]) {
        QuantDescriptor* d = kTable[index].describe();
        if (!d) return "";
        memcpy(names[index], d->name, sizeof names[index]);
        names[index][sizeof names[index] - 1] = '\0';
        gfree(d);
    }
    return names[index];
}

bool quant_keeps_alpha(int32_t index) {
    const char* name = quant_name(index);
    return quant::sameName(name, "Tw") || quant::sameName(name, "4D Wu") ||
           quant::sameName(name, "Exact");
}

int32_t quant_find(const char* name) {
    for (int32_t i = 0; name && i < kQuantCount; ++i)
        if (quant::sameName(quant_name(i), name)) return quant_select(i);
    return quant_select(0);
}

QuantDescriptor* quant_describe() {
    return kTable[g_current].describe();
}

QuantInstance* quant_begin() {
    return kTable[g_current].begin();
}

int quant_add_image(QuantInstance* instance, const TavixInfo* info, const void* pixels,
                    int32_t rowbytes) {
    if (!instance) return 0;
    return kTable[g_current].addImage(instance, info, pixels, rowbytes);
}

uint32_t* quant_make_palette(QuantInstance* instance, int32_t k, QuantInverseMap** map,
                             int32_t* count) {
    if (map) *map = nullptr;
    if (count) *count = 0;
    if (!instance) return nullptr;
    if (k < 1) k = 1;
    if (k > 256) k = 256;
    return kTable[g_current].makePalette(instance, k, map, count);
}

uint32_t* quant_palette(QuantInstance* instance, int32_t k, QuantInverseMap** map) {
    return quant_make_palette(instance, k, map, nullptr);
}

void quant_abandon(QuantInstance* instance) {
    if (instance && instance->destroy) instance->destroy(instance);
}

void quant_set_diagnostics(bool on) {
    quant::g_diagnostics = on;
}

bool quant_diagnostics() {
    return quant::g_diagnostics;
}
