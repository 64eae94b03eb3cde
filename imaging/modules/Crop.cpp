// Crop ("Crop"): cuts the canvas to a window of the image or extends it.
//
// Values in descriptor order: Width, Height (1 to 65536, larger or smaller
// values are held to that range), Colour (fill, an index for indexed
// images), ClampX and ClampY (what the window shows beyond the image's left
// and right, top and bottom edges: Fill the colour, Clamp the edge pixel,
// Wrap the image repeated, Mirror the image repeated mirrored) and Layered
// Flag (taken and ignored). The window starts at the image's top-left.
//
// The canvas command passes seven values instead: x offset, y offset,
// width, height, colour, ClampX, ClampY. Seven or more values are read that
// way; the offsets may be negative or reach beyond the image.
//
// The centre point and hot spots move by the offsets; the default point
// moves the other way, so the kept part of the picture stays where it was
// on the worksheet.

#include "imaging/geometry/canvas.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 65536, 256, "Width"},
    {kParamInteger, 1, 65536, 256, "Height"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Colour"},
    {kParamChoice, 0, 3, 0, "ClampX", "Fill,Clamp,Wrap,Mirror"},
    {kParamChoice, 0, 3, 0, "ClampY", "Fill,Clamp,Wrap,Mirror"},
    {kParamInteger, 0, 1, 0, "Layered Flag"},
};

constexpr ModuleDecl kDecl = {
    .magic = "CROP", .name = "Crop", .description = "Crop", .version = "1.04", .params = kParams};

constexpr int32_t kCommandForm = 7;
constexpr int32_t kMaxSide = 65536;

geometry::CropWindow window(const ModuleInstance* instance) {
    geometry::CropWindow w;
    if (instance->valueCount >= kCommandForm) {
        w.x = module_value_int(instance, 0, 0);
        w.y = module_value_int(instance, 1, 0);
        w.width = module_value_int(instance, 2, 1);
        w.height = module_value_int(instance, 3, 1);
        w.fill = module_value_uint(instance, 4, 0);
        w.edgeX = geometry::edge_from(module_value_int(instance, 5, 0));
        w.edgeY = geometry::edge_from(module_value_int(instance, 6, 0));
    } else {
        w.width = module_value_int(instance, kDecl, 0);
        w.height = module_value_int(instance, kDecl, 1);
        w.fill = module_value_uint(instance, kDecl, 2);
        w.edgeX = geometry::edge_from(module_value_int(instance, kDecl, 3));
        w.edgeY = geometry::edge_from(module_value_int(instance, kDecl, 4));
    }
    w.width = std::clamp(w.width, 1, kMaxSide);
    w.height = std::clamp(w.height, 1, kMaxSide);
    return w;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* info = module_copy_info(instance->images[0].info);
    if (info) geometry::crop_record(window(instance), info);
    return info;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_resized(kDecl, instance, result, pixels, rowbytes)) return 0;
    geometry::CropWindow w = window(instance);
    // A caller that asks another size gets that much of the window.
    w.width = result->width;
    w.height = result->height;
    return geometry::crop_pixels(w, instance->images[0],
                                 geometry::raster_of(result, pixels, rowbytes));
}

} // namespace

constexpr ModuleEntry mod_crop = module_entry<kDecl>(query, process);
