// Dilate ("Dilate (Maximize)"): each channel of each pixel becomes the
// maximum of that channel over the pixel's 3x3 neighbourhood
// (ImageMagick's "-morphology Dilate Square:1"): light and opaque areas
// grow by one pixel. Edges repeat outward. No values.
//
// Indexed images are filtered in colour and mapped back to the nearest
// colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/neighbourhood.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "DLAT", .name = "Dilate", .description = "Dilate (Maximize)", .version = "1.00"};

bool rank(const ModuleInstance*, filter::Plane* plane) {
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    filter::plane_copy(*plane, &from);
    filter::rank3x3(from, plane, filter::Rank::Maximum);
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_dilate = filter::plane_entry<kDecl, rank>();
