// Erode ("Erode (Minimize)"): each channel of each pixel becomes the
// minimum of that channel over the pixel's 3x3 neighbourhood
// (ImageMagick's "-morphology Erode Square:1"): dark and transparent
// areas grow by one pixel. Edges repeat outward. No values.
//
// Indexed images are filtered in colour and mapped back to the nearest
// colour of their palette.

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/neighbourhood.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

namespace {

constexpr ModuleDecl kDecl = {
    .magic = "EROD", .name = "Erode", .description = "Erode (Minimize)", .version = "1.00"};

bool rank(const ModuleInstance*, filter::Plane* plane) {
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    filter::plane_copy(*plane, &from);
    filter::rank3x3(from, plane, filter::Rank::Minimum);
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_erode = filter::plane_entry<kDecl, rank>();
