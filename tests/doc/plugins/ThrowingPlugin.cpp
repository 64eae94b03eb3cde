// A layout plug-in whose edit throws after it filled its result.
#include "plugins/LayoutPlugin.h"

#include <cstdlib>
#include <stdexcept>

ZY_LAYOUT_EXPORT int EditLayoutImage(const LayoutImage*, LayoutImage* out) {
    out->pixels = malloc(16);
    throw std::runtime_error("plug-in failure");
}

ZY_LAYOUT_EXPORT void FreeLayoutImage(LayoutImage* out) {
    free(out->pixels);
    *out = {};
}
