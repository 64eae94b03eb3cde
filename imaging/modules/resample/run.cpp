#include "imaging/modules/resample/run.h"

namespace resample {

bool run_named(const char* name, const ImageEntry& in, const ModuleValue* values, int32_t count,
               ModuleResult* out) {
    *out = ModuleResult{};
    int32_t caller = module_current();
    int32_t index = module_find(name);
    bool ok = index != 0 && module_run_new(index, 1, &in, count, values, 1, out) != 0;
    module_select(caller);
    return ok;
}

} // namespace resample
