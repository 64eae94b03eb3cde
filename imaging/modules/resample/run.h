#pragma once
// Running another module by name from inside a module.

#include "imaging/module/module.h"

namespace resample {

// Finds module `name`, runs it on one image into a new unpadded result and
// selects the previously current module again. Unlike a plain run by name,
// a name that does not resolve (also when finding it runs out of memory)
// fails instead of quietly running the identity module in its place.
bool run_named(const char* name, const ImageEntry& in, const ModuleValue* values, int32_t count,
               ModuleResult* out);

} // namespace resample
