#include "tavix/core/Driver.h"

#include <cstring>
#include <strings.h>

namespace tavix {

extern const Driver kFshDriver;
extern const Driver kSshDriver;
extern const Driver kXshDriver;
extern const Driver kGshDriver;
extern const Driver kTgaDriver;
extern const Driver kPngDriver;
extern const Driver kBmpDriver;
extern const Driver kTvxDriver;

namespace {
// The order is the driver index the program sees; append, never reorder.
const Driver* const kDrivers[] = {&kFshDriver, &kSshDriver, &kXshDriver, &kGshDriver,
                                  &kTgaDriver, &kPngDriver, &kBmpDriver, &kTvxDriver};
} // namespace

int driverCount() {
    return static_cast<int>(std::size(kDrivers));
}

const Driver* driverAt(int index) {
    return index >= 0 && index < driverCount() ? kDrivers[index] : nullptr;
}

void copyText(char* to, size_t capacity, const char* from) {
    if (capacity == 0) return;
    size_t n = from ? strnlen(from, capacity - 1) : 0;
    memcpy(to, from, n);
    to[n] = 0;
}

void fillAbout(TavixAbout& about, uint32_t formatid, const char* shortname, uint32_t caps,
               std::initializer_list<const char*> extensions, const char* description) {
    memset(&about, 0, sizeof about);
    about.formatid = formatid;
    about.size = sizeof(TavixAbout);
    about.caps = caps;
    copyText(about.shortname, sizeof about.shortname, shortname);
    int i = 0;
    for (const char* extension : extensions)
        if (i < kTavixMaxExtensions) copyText(about.extensions[i++], 8, extension);
    copyText(about.author, sizeof about.author, "Zy project");
    copyText(about.version, sizeof about.version, "1.00");
    copyText(about.description, sizeof about.description, description);
}

bool hasExtension(const char* path, const char* extension) {
    if (!path) return false;
    const char* dot = strrchr(path, '.');
    const char* slash = strrchr(path, '/');
    if (!dot || (slash && dot < slash)) return false;
    return strcasecmp(dot, extension) == 0;
}

} // namespace tavix
