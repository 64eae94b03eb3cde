#pragma once
// The texts of the shape list: its columns, its cells and the two status
// panes it serves. Plain functions of the image records, so that they read
// the same in the list, in the tests and anywhere else.

#include <cstdint>
#include <string>

class CTavixDoc;
class CTavixImage;

enum class ColumnAlign { Left, Right };

struct CListColumn {
    const char* header;
    ColumnAlign align;
    int width;
};

constexpr int kListColumnCount = 7;
extern const CListColumn kListColumns[kListColumnCount];

// A cell holds at most this many characters (the rest is cut).
constexpr int kListCellMax = 259;

// The text of column `column` for the image at row `row`.
std::string ImageCellText(const CTavixImage& image, int row, int column);

// "%d/%d (index %d)" with focus + 1, count, focus; "0/0" for an empty list.
std::string IndexPaneText(int focus, int count);
// ">1KB" below 1 KB, "%dKB" rounded up below 1 MB, "%.1fMB" from there on;
// "0KB" for nothing at all.
std::string SizePaneText(int64_t bytes);
// The bytes of every image of the document: (bpp x height x width) / 8 each.
int64_t DocumentByteSize(const CTavixDoc& doc);
