// Texture ("Texture Map"): maps the picture onto a polygon, as a game
// engine draws a textured polygon.
//
// Values: NumVertices, then four values per vertex from the second slot
// on: x and y of the vertex in the result, u and v of the point of the
// source it shows (all in pixels). The polygon is drawn as a fan of
// triangles from the first vertex, each mapped linearly; what it does not
// cover is transparent (index 0 on indexed images). Vertices for which no
// values were passed are left out; with fewer than three the picture is
// copied. The result has the source's size; 32-bit images are sampled
// bilinearly, indexed ones take the nearest pixel.

#include "imaging/geometry/warp.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <vector>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 0, 65536, 0, "NumVertices"},
    {kParamInteger, kIntMin, kIntMax, 0, "Vertices"},
};

constexpr ModuleDecl kDecl = {.magic = "FTEX",
                              .name = "Texture",
                              .description = "Texture Map",
                              .version = "1.00",
                              .params = kParams};

constexpr int32_t kVertexValues = 4;

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    int32_t given = std::max(0, (instance->valueCount - 1) / kVertexValues);
    int32_t count = std::clamp(module_value_int(instance, kDecl, 0), 0, given);
    std::vector<geometry::Vertex> vertices(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        auto v = [&](int32_t k) {
            return double(module_value_int(instance, 1 + i * kVertexValues + k, 0));
        };
        vertices[static_cast<size_t>(i)] = {v(0), v(1), v(2), v(3)};
    }
    return geometry::texture_map(instance->images[0], geometry::raster_of(result, pixels, rowbytes),
                                 vertices.data(), count);
}

} // namespace

constexpr ModuleEntry mod_texture = module_entry<kDecl>(query, process);
