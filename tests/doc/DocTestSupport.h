#pragma once
// Helpers for the model tests: multi-frame files written by the codec
// library, a deep picture of a document for "identical" checks, and a view
// that records the hints it receives.

#include "app/doc/TavixDoc.h"
#include "app/doc/View.h"
#include "codec/FrameIO.h"

#include <string>
#include <vector>

namespace zytest {

int tvxDriver();

// Writes `count` frames alternating 8-bit and 32-bit, 5+i x 3+i pixels,
// named "img0", "img1" ... with the codec's "tvx" driver.
void writeMixedTvx(const std::string& path, int count);
void writeTvx(const std::string& path, const std::vector<const TavixFrame*>& frames);

// Everything that makes one image: its whole record and its pixel rows.
std::string imageBytes(const CTavixImage& image);

// The image objects of a document and their contents.
struct DocSnapshot {
    std::vector<const CTavixImage*> objects;
    std::vector<std::string> contents;
};
DocSnapshot snapshot(const CTavixDoc& doc);

// A view that writes down each hint: "insert 0 5", "modified 01100",
// "delete 010", "focus 3", "state", "options", "all".
class RecordingView : public CView {
  public:
    void OnUpdate(CView* sender, long lHint, CObject* hint) override;
    std::vector<std::string> hints;
};

// The range as a string of 0s and 1s.
std::string bits(const CRange& range);

} // namespace zytest
