#include "tavix/core/Errors.h"

#include <cstdarg>
#include <cstdio>

namespace tavix {

void fail(const char* format, ...) {
    FormatError error;
    va_list args;
    va_start(args, format);
    vsnprintf(error.message, sizeof error.message, format, args);
    va_end(args);
    throw error;
}

} // namespace tavix
