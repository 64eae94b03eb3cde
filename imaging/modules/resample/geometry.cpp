#include "imaging/modules/resample/geometry.h"

#include "imaging/module/authoring.h"

#include <cmath>

namespace resample {

int32_t truncate_point(double v) {
    if (!(v > -2147483648.0)) return INT32_MIN; // also NaN
    if (v >= 2147483647.0) return INT32_MAX;
    return static_cast<int32_t>(v);
}

int32_t round_point(double v) {
    int32_t whole = truncate_point(v);
    double fraction = v - std::trunc(v);
    if (fraction >= 0.5 && whole < INT32_MAX) ++whole;
    return whole;
}

void scale_points(TavixInfo* info, Ratio x, Ratio y, bool roundCentre) {
    int32_t (*centre)(double) = roundCentre ? round_point : truncate_point;
    info->centerx = centre(x.apply(info->centerx));
    info->centery = centre(y.apply(info->centery));
    info->defaultx = centre(x.apply(info->defaultx));
    info->defaulty = centre(y.apply(info->defaulty));
    int32_t spots = module_hotspot_count(info);
    for (int32_t i = 0; i < spots; ++i) {
        info->hotspots[i].x = truncate_point(x.apply(info->hotspots[i].x));
        info->hotspots[i].y = truncate_point(y.apply(info->hotspots[i].y));
    }
}

} // namespace resample
