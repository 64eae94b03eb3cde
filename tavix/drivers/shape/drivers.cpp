// What the four shape drivers share: description and detection.

#include "tavix/core/Errors.h"
#include "tavix/drivers/shape/RefPack.h"
#include "tavix/drivers/shape/Shape.h"

namespace tavix::shape {

void aboutShape(const Variant& variant, TavixAbout& about) {
    fillAbout(about, variant.formatid, variant.shortname,
              kCapRead | kCapWrite | kCapPalette | kCapTrueColour | kCapMultiImage | kCapPacked,
              {variant.extension}, variant.description);
    about.colourlimit = 256;
    about.namelimit = 0; // long names travel in their own record
    copyText(about.notes, sizeof about.notes, variant.notes);
}

DetectScore detectShape(const Variant& variant, ByteSpan head, const char* path) {
    if (hasMagic(variant, head)) return kByContent;
    if (refpack::looksPacked(head)) {
        try {
            Bytes start = refpack::peek(head, 4);
            if (hasMagic(variant, start)) return kByContent;
        } catch (const FormatError&) {
            // not a packed shape file after all
        }
    }
    return hasExtension(path, variant.extension) ? kByName : kNotMine;
}

} // namespace tavix::shape
