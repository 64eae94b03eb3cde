#pragma once
// Zy's own clipboard and drag format for images ("application/x-zy-image-
// list"): whole image records (name, points, hot spots, palette, the
// driver's tail) and their pixel rows, so that images pasted into another
// Zy document, or another Zy process, arrive exactly as they left.
//
// Layout, little-endian: "ZYIL", version 1, image count; then per image
// the record size, the record, the row pitch and the pixel rows.

#include <memory>
#include <string>
#include <vector>

class CTavixImage;

// The format's name on the clipboard and in drags.
constexpr const char* kImageListClipFormat = "application/x-zy-image-list";

std::string EncodeImageList(const std::vector<const CTavixImage*>& images);
// The images of a block; empty when the block is not a well-formed list
// (any damage rejects the whole block).
std::vector<std::unique_ptr<CTavixImage>> DecodeImageList(const std::string& block);
