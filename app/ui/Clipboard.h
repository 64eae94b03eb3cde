#pragma once
// Images on the system clipboard. Zy offers the images in its own format
// (whole records, app/doc/ImageListClip.h) and the first of them as a PNG
// bitmap for other programs; it takes back either, its own format first.

#include <memory>
#include <string>
#include <vector>

class CTavixImage;

// The names the Paste Special dialog shows.
constexpr const char* kClipFormatImageList = "Zy Image List";
constexpr const char* kClipFormatBitmap = "Bitmap";

void OfferImagesToClipboard(const std::vector<const CTavixImage*>& images);
// The image formats on the clipboard, best first.
std::vector<std::string> ClipboardImageFormats();
// The images in `format` (empty: the best there is); none when the
// clipboard holds nothing readable in it.
std::vector<std::unique_ptr<CTavixImage>> ReadClipboardImages(const std::string& format);
