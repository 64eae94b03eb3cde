#pragma once
// The fixed table of modules: one pointer to each module's entry record,
// closed by a null pointer. Only the framework reads it; everyone else
// goes through module.h.

#include "imaging/module/module.h"

extern const ModuleEntry* const g_moduleTable[];
