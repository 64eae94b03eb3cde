#include "app/doc/Conform.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

struct Survey {
    int count = 0;
    int palette = 0;
    int trueColour = 0;
    int packed = 0;
    int maxStart = 0;
    int maxColours = 0;
    int longestName = 0;
};

int nameLength(const TavixInfo& info) {
    return static_cast<int>(strnlen(info.framename, sizeof info.framename));
}

Survey survey(const CTavixImageList& images) {
    Survey s;
    for (const CTavixImage* image : images) {
        const TavixInfo& info = *image->GetInfo();
        ++s.count;
        if (info.bufferbpp <= 8) {
            ++s.palette;
            s.maxStart = std::max(s.maxStart, info.startcolour);
            s.maxColours = std::max(s.maxColours, info.numcolours);
        } else {
            ++s.trueColour;
        }
        if (info.packed) ++s.packed;
        s.longestName = std::max(s.longestName, nameLength(info));
    }
    return s;
}

bool has(const TavixAbout& about, uint32_t bits) {
    return (about.caps & bits) != 0;
}

} // namespace

std::string ConformProblems(const TavixAbout& about, const CTavixImageList& images) {
    const Survey s = survey(images);
    std::string lines;
    char line[96];
    if (!has(about, kCapWrite)) lines += "    - saving files\n";
    if (s.palette && !has(about, kCapPalette)) lines += "    - palette based images (<= 8 bpp)\n";
    if (s.trueColour && !has(about, kCapTrueColour)) lines += "    - true color images (> 8 bpp)\n";
    if (s.count > 1 && !has(about, kCapMultiImage)) lines += "    - multiple images\n";
    if (s.packed && !has(about, kCapPacked | kCapPackedAlt)) lines += "    - packed images\n";
    if (s.maxStart != 0 && !has(about, kCapStartColour)) lines += "    - start colour values > 0\n";
    if (about.colourlimit != 0 && about.colourlimit < s.maxColours) {
        snprintf(line, sizeof line, "    - color index values > %d\n", about.colourlimit);
        lines += line;
    }
    // "or more" although a name exactly as long as the limit passes: the
    // test and the wording are the program's own.
    if (about.namelimit != 0 && about.namelimit < s.longestName) {
        snprintf(line, sizeof line, "    - frame names with %d or more characters\n",
                 about.namelimit);
        lines += line;
    }
    return lines;
}

std::string ConformWarning(const std::string& problems) {
    return "WARNING: The file format you have chosen does not support all of the options present "
           "in the current document.\nThe options not supported are:\n" +
           problems +
           "\nPressing OK will cause Zy to attempt to make your document conform but you will "
           "probably lose some data.\nPress Cancel to stop the operation and leave your data "
           "untouched.";
}

void ConformImages(const TavixAbout& about, int fileType, int driver, CTavixImageList& images) {
    for (CTavixImage* image : images) {
        TavixInfo* info = image->GetInfoForWrite();
        if (!info) continue;
        if (fileType != driver && ((info->formatid ^ about.formatid) & 0xFFFFFF00u) != 0) {
            info->packed = 0;
            info->subtype = 0;
            info->quality = 100;
        }
        if (!has(about, kCapPacked | kCapPackedAlt)) info->packed = 0;
        if (!has(about, kCapStartColour)) {
            if (about.colourlimit != 0)
                info->numcolours = info->bpp > 8 ? 0 : info->bpp > 4 ? 256 : 16;
            info->startcolour = 0;
        }
        if (about.namelimit > 0 && nameLength(*info) > about.namelimit &&
            about.namelimit < static_cast<int>(sizeof info->framename))
            info->framename[about.namelimit] = '\0';
        image->TakeModifiedMark();
    }
}
