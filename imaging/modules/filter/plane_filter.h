#pragma once
// The shared shape of a filter that works on a plane (filter/plane.h): the
// result has the input's record and size; process loads the input into a
// plane, lets the module change it, and stores it into the result.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane.h"

namespace filter {

enum class PlaneKind {
    Colours, // ARGB words; indexed results take the nearest palette entry
    Values,  // indices stay indices; colour values are indices there
};

// Changes `plane` in place. False only when memory is short.
using PlaneOp = bool (*)(const ModuleInstance* instance, Plane* plane);

// Query output of a filter that keeps the record: a copy of it.
TavixInfo* plane_query(ModuleInstance* instance, int32_t index);

int plane_process(const ModuleDecl& decl, const ModuleInstance* instance, const TavixInfo* result,
                  void* pixels, int32_t rowbytes, PlaneOp op, PlaneKind kind);

template <const ModuleDecl& Decl, PlaneOp Op, PlaneKind Kind = PlaneKind::Colours>
constexpr ModuleEntry plane_entry() {
    return module_entry<Decl>(plane_query,
                              [](ModuleInstance* instance, const TavixInfo* result, void* pixels,
                                 int32_t rowbytes) -> int {
                                  return plane_process(Decl, instance, result, pixels, rowbytes, Op,
                                                       Kind);
                              });
}

// A colour parameter of a value-plane filter: the caller passes an index
// for indexed images and an ARGB word otherwise.
inline uint32_t value_of_colour(const ImageEntry& in, uint32_t colour) {
    return in.info->bufferbpp <= 8 ? (colour & 0xFF) : colour;
}

} // namespace filter
