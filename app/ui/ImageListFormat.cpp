#include "app/ui/ImageListFormat.h"

#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"

#include <cstdio>
#include <cstring>

const CListColumn kListColumns[kListColumnCount] = {
    {"Name", ColumnAlign::Left, 75},     {"Dimensions", ColumnAlign::Left, 75},
    {"Center", ColumnAlign::Right, 60},  {"Default", ColumnAlign::Right, 60},
    {"Packed", ColumnAlign::Left, 50},   {"Size", ColumnAlign::Right, 50},
    {"Comment", ColumnAlign::Left, 150},
};

namespace {

template <size_t N> std::string fieldText(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

std::string format(const char* pattern, auto... values) {
    char buffer[kListCellMax + 1];
    snprintf(buffer, sizeof buffer, pattern, values...);
    return buffer;
}

} // namespace

std::string ImageCellText(const CTavixImage& image, int row, int column) {
    const TavixInfo* info = image.GetInfo();
    std::string text;
    switch (column) {
    case 0:
        text = image.GetName();
        if (text.empty()) text = format("image %d", row + 1);
        break;
    case 1:
        text = format("%dx%dx%d", info->width, info->height, info->bpp);
        break;
    case 2:
        text = format("%d,%d", info->centerx, info->centery);
        break;
    case 3:
        text = format("%d,%d", info->defaultx, info->defaulty);
        break;
    case 4:
        text = info->packed ? "yes" : "no";
        break;
    case 5:
        text = format("%d", info->bpp * info->width / 8 * info->height);
        break;
    case 6:
        text = fieldText(info->comment);
        break;
    default:
        break;
    }
    if (text.size() > static_cast<size_t>(kListCellMax)) text.resize(kListCellMax);
    return text;
}

std::string IndexPaneText(int focus, int count) {
    if (count <= 0) return "0/0";
    return format("%d/%d (index %d)", focus + 1, count, focus);
}

std::string SizePaneText(int64_t bytes) {
    if (bytes <= 0) return "0KB";
    if (bytes < 1024) return ">1KB";
    if (bytes < 1048576) return format("%dKB", static_cast<int>((bytes + 1023) / 1024));
    return format("%.1fMB", static_cast<double>(bytes) / 1048576.0);
}

int64_t DocumentByteSize(const CTavixDoc& doc) {
    int64_t total = 0;
    for (const CTavixImage* image : doc.GetImages()) {
        const TavixInfo* info = image->GetInfo();
        total += static_cast<int64_t>(info->bpp) * info->height * info->width / 8;
    }
    return total;
}
