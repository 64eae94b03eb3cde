// Photoshop ("Photoshop Filters"): hands the picture to an outside image
// editor and takes back what the artist saved.
//
// Open writes the picture to a temporary Targa file "Temp.PSbak.tga",
// runs the editor command on it (see imaging/external/editor.h: the
// command from the settings, else ZY_EXTERNAL_EDITOR, else GIMP when
// installed; with none, open refuses with a line that says so), waits for
// the editor to close and reads the file back. The result may have another
// size than the source.
//
// Values: Colour Reduce, the depth of the exchange file: 8 (colour-mapped
// with the image's palette; true-colour images go at 24 then), 16 (five
// bits per colour, one of alpha), 24 (no alpha: the picture keeps its own
// alpha when the editor leaves its size) or 32. Indexed images come back
// indexed: with the palette the editor saved when it kept the file
// colour-mapped, else mapped onto their own palette by nearest colour.

#include "imaging/external/editor.h"
#include "imaging/external/targa.h"
#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/modules/resample/palette.h"
#include "imaging/quant/indexed.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamChoice, 0, 3, 3, "Colour Reduce", "8,16,24,32"},
};

constexpr ModuleDecl kDecl = {.magic = "SHOP",
                              .name = "Photoshop",
                              .description = "Photoshop Filters",
                              .version = "1.00",
                              .params = kParams};

constexpr int32_t kDepths[] = {8, 16, 24, 32};

// The instance keeps the picture read back until the caller has it.
struct Exchange {
    ModuleInstance base;
    TavixInfo* info;
    uint8_t* pixels; // unpadded rows
};

// An editor that hands back full colour for an indexed source: its
// pixels are mapped by nearest colour onto the source's own palette range,
// so the indices keep their meaning for the rest of the document.
bool mapOntoSourcePalette(const TavixInfo* source, const external::TargaPicture& picture,
                          Exchange* x) {
    TavixInfo view = *x->info;
    view.bufferbpp = 32;
    view.bpp = 32;
    const ImageEntry argb{&view, picture.argb, picture.width * 4};
    QuantIndexedSettings s;
    s.start = std::clamp(source->startcolour, 0, 255);
    s.count = std::clamp(resample::palette_size(source), 1, 256 - s.start);
    uint32_t palette[256];
    uint8_t used[256] = {};
    memcpy(palette, source->colours, sizeof palette);
    memset(used + s.start, 1, static_cast<size_t>(s.count));
    ModuleResult made{};
    if (!quant_make_indexed(argb, palette, used, s, &made)) return false;
    x->pixels = made.pixels;
    gfree(made.info);
    return true;
}

// Turns the picture read back into a record and pixels of the source's
// depth.
bool adopt(const ImageEntry& in, const external::TargaPicture& picture, Exchange* x) {
    x->info = module_copy_info(in.info);
    if (!x->info) return false;
    bool sameSize = picture.width == in.info->width && picture.height == in.info->height;
    x->info->width = picture.width;
    x->info->height = picture.height;
    int64_t count = static_cast<int64_t>(picture.width) * picture.height;
    if (module_pixel_bytes(in.info) == 1) {
        if (picture.indices) {
            x->pixels = static_cast<uint8_t*>(galloc(static_cast<int32_t>(count)));
            if (!x->pixels) return false;
            memcpy(x->pixels, picture.indices, static_cast<size_t>(count));
            for (int32_t i = 0; i < picture.paletteSize; ++i) {
                uint32_t c = picture.palette[i];
                x->info->colours[i] =
                    TavixColour{uint8_t(c), uint8_t(c >> 8), uint8_t(c >> 16), uint8_t(c >> 24)};
            }
            x->info->numcolours = picture.paletteSize;
            return true;
        }
        return mapOntoSourcePalette(in.info, picture, x);
    }
    x->pixels = static_cast<uint8_t*>(galloc(static_cast<int32_t>(count * 4)));
    if (!x->pixels) return false;
    memcpy(x->pixels, picture.argb, static_cast<size_t>(count * 4));
    if (!picture.hasAlpha && sameSize) {
        geometry::Raster source = geometry::raster_of(in);
        for (int32_t y = 0; y < picture.height; ++y)
            for (int32_t x0 = 0; x0 < picture.width; ++x0) {
                uint8_t* at = x->pixels + (static_cast<size_t>(y) * picture.width + x0) * 4;
                at[3] = static_cast<uint8_t>(geometry::channel(source.get(x0, y), 24));
            }
    }
    return true;
}

// Writes, edits and reads back; false with a line printed on any failure.
bool exchange(const ImageEntry& in, int32_t depth, Exchange* x) {
    std::string command = external::editor_command();
    if (command.empty()) {
        gprintf("Photoshop - no outside image editor: install GIMP or name an editor in the "
                "settings\n");
        return false;
    }
    const char* tmp = getenv("TMPDIR");
    std::string folder = std::string(tmp && *tmp ? tmp : "/tmp") + "/zy-exchange-XXXXXX";
    if (!mkdtemp(folder.data())) {
        gprintf("Photoshop - cannot make a folder for the exchange file in %s\n",
                tmp && *tmp ? tmp : "/tmp");
        return false;
    }
    std::string path = folder + "/Temp.PSbak.tga";
    bool ok = external::targa_write(path.c_str(), in, depth) && external::editor_run(command, path);
    external::TargaPicture picture;
    ok = ok && external::targa_read(path.c_str(), &picture);
    ok = ok && adopt(in, picture, x);
    external::targa_free(&picture);
    unlink(path.c_str());
    rmdir(folder.c_str());
    return ok;
}

int close(ModuleInstance* instance) {
    if (!instance) return 0;
    auto* x = reinterpret_cast<Exchange*>(instance);
    if (x->info) gfree(x->info);
    if (x->pixels) gfree(x->pixels);
    return module_close_instance(instance);
}

int open(ModuleInstance** out, int32_t imageCount, const ImageEntry* images, int32_t valueCount,
         const ModuleValue* values) {
    if (!module_open_instance(kDecl, out, imageCount, images, valueCount, values, 1,
                              sizeof(Exchange)))
        return 0;
    int32_t choice = module_value_int(*out, kDecl, 0);
    int32_t depth = choice >= 0 && choice <= 3 ? kDepths[choice] : 32;
    if (!images[0].pixels || !exchange(images[0], depth, reinterpret_cast<Exchange*>(*out))) {
        close(*out);
        *out = nullptr;
        return 0;
    }
    return 1;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    auto* x = reinterpret_cast<Exchange*>(instance);
    return x->info ? module_copy_info(x->info) : nullptr;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    auto* x = reinterpret_cast<Exchange*>(instance);
    if (!x->info || !geometry::check_result(kDecl.name, instance, result, pixels, rowbytes,
                                            module_pixel_bytes(x->info)))
        return 0;
    if (result->width != x->info->width || result->height != x->info->height) {
        gprintf("Photoshop - result is not %d x %d\n", x->info->width, x->info->height);
        return 0;
    }
    int32_t length = module_row_length(x->info);
    for (int32_t y = 0; y < x->info->height; ++y)
        memcpy(module_row(pixels, rowbytes, y), x->pixels + static_cast<size_t>(y) * length,
               static_cast<size_t>(length));
    return 1;
}

} // namespace

constexpr ModuleEntry mod_photoshop = {.describe = module_describer<kDecl>,
                                       .open = open,
                                       .query = query,
                                       .process = process,
                                       .close = close};
