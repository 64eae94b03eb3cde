#pragma once
// The fixed table of modules, closed by an entry whose describe is null.
// Only the framework reads it; everyone else goes through module.h.

#include "imaging/module/module.h"

extern const ModuleEntry g_moduleTable[];
