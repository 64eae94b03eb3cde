#pragma once
// Small operations on a document's image list that several command
// families share: inserting at a position, reordering with the selection
// and focus following their images.

#include <memory>
#include <vector>

class CRange;
class CTavixDoc;
class CTavixImage;

// Puts `image` so that it becomes position `position` (0 = the head, the
// image count = the tail) and returns the position it took.
int InsertImageAt(CTavixDoc* doc, int position, std::unique_ptr<CTavixImage> image);

// The positions set in `range`, ascending.
std::vector<int> MarkedPositions(const CRange& range);

// Gives the document the images of `order` (a permutation of its own list)
// with `marks` as the new selection; the focus stays on the image it was
// on. Views get one update with no hint.
void ReorderImages(CTavixDoc* doc, const std::vector<CTavixImage*>& order,
                   const std::vector<uint8_t>& marks);
