// alphacomment ("Imbed comment in alpha"): hides the image's comment text
// in the lowest bit of its alpha channel, where it changes no visible
// opacity, or reads such a text back into the comment.
//
// The text is stored one bit per pixel, row by row from the top-left
// pixel, eight bits per character with the highest bit first, ending with
// a zero character; a text longer than the image has pixels for is cut
// short (the zero character is then dropped).
//
// Value (default 0): 0 embeds the comment (the list's one name,
// "addextract"); 1 extracts: the result's comment becomes the hidden text
// (up to 1023 characters, up to the first zero character), which is also
// printed, and the pixels stay as they are.
//
// Indexed images have no alpha channel of their own: they are copied
// unchanged with a line that says so.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/plane.h"
#include "imaging/modules/modules.h"

#include <cstring>

namespace {

// The list names "add" and "extract" run together into one word, and
// dialogs show it as written; the maximum follows the one name the list
// holds, while the module itself takes 1 as extract.
//
constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 0, 0, "", "addextract"},
};

constexpr ModuleDecl kDecl = {.magic = "ACMT",
                              .name = "alphacomment",
                              .description = "Imbed comment in alpha",
                              .version = "1.00",
                              .params = kParams};

enum : int32_t { kEmbed = 0, kExtract = 1 };
constexpr int32_t kMaxText = static_cast<int32_t>(sizeof(TavixInfo::comment)) - 1;

bool extracting(const ModuleInstance* instance) {
    return module_value_int(instance, kDecl, 0) == kExtract;
}

// Bit `i` of the hidden text, counted through the pixels row by row.
int readBit(const ImageEntry& in, int64_t i) {
    auto y = static_cast<int32_t>(i / in.info->width), x = static_cast<int32_t>(i % in.info->width);
    return module_row(in, y)[4 * x + 3] & 1;
}

// Whether `c` can be part of a hidden text: printable characters, tabs and
// line ends, and the bytes of UTF-8 sequences.
bool textByte(int c) {
    return c >= 0x20 ? c != 0x7F : c == '\t' || c == '\r' || c == '\n';
}

// The text hidden in `in`, up to kMaxText characters, into `text`. An image
// whose low alpha bits are not a zero-ended text (an opaque sprite reads as
// 0xFF bytes) holds none: `text` is then empty and the answer false.
bool readText(const ImageEntry& in, char* text) {
    int64_t bits = static_cast<int64_t>(in.info->width) * in.info->height;
    for (int32_t length = 0; length <= kMaxText && (length + 1) * 8 <= bits; ++length) {
        int c = 0;
        for (int b = 0; b < 8; ++b)
            c = (c << 1) | readBit(in, length * 8 + b);
        if (c == 0) {
            text[length] = '\0';
            return true;
        }
        if (!textByte(c) || length == kMaxText) break;
        text[length] = static_cast<char>(c);
    }
    text[0] = '\0';
    return false;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    const ImageEntry& in = instance->images[0];
    TavixInfo* info = module_copy_info(in.info);
    char text[kMaxText + 1];
    if (info && extracting(instance) && in.pixels && in.info->bufferbpp > 8 && readText(in, text))
        memcpy(info->comment, text, strlen(text) + 1);
    return info;
}

void writeText(const char* text, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    int64_t bits = static_cast<int64_t>(result->width) * result->height;
    int64_t length = static_cast<int64_t>(strnlen(text, kMaxText)) + 1; // with the zero
    for (int64_t i = 0; i < length * 8 && i < bits; ++i) {
        int bit = (static_cast<uint8_t>(text[i / 8]) >> (7 - i % 8)) & 1;
        auto y = static_cast<int32_t>(i / result->width),
             x = static_cast<int32_t>(i % result->width);
        uint8_t* alpha = module_row(pixels, rowbytes, y) + 4 * x + 3;
        *alpha = static_cast<uint8_t>((*alpha & 0xFE) | bit);
    }
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    filter::copy_rows(in, pixels, rowbytes);
    if (in.info->bufferbpp <= 8) {
        gprintf("alphacomment - an indexed image has no alpha channel to hold a text\n");
        return 1;
    }
    if (extracting(instance)) {
        char text[kMaxText + 1];
        ImageEntry copy{in.info, pixels, rowbytes};
        if (readText(copy, text))
            gprintf("alphacomment - %s\n", text);
        else
            gprintf("alphacomment - the image holds no hidden text\n");
        return 1;
    }
    char text[kMaxText + 1];
    memcpy(text, in.info->comment, kMaxText);
    text[kMaxText] = '\0';
    writeText(text, result, pixels, rowbytes);
    return 1;
}

} // namespace

constexpr ModuleEntry mod_alphacomment = module_entry<kDecl>(query, process);
