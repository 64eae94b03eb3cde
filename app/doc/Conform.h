#pragma once
// The save-time format check: what a codec driver cannot hold of a list of
// images, and the changes that make the images fit it. CTavixDoc::Conform
// asks the user between the two; both halves are plain functions of the
// driver's description so that they can be checked without a codec.

#include "app/doc/TavixImageList.h"
#include "tavix/records.h"

#include <string>

// The unsupported options, one line each ("    - multiple images\n" ...) in
// the fixed order; empty when the driver can hold everything.
std::string ConformProblems(const TavixAbout& about, const CTavixImageList& images);

// The whole warning shown for `problems`.
std::string ConformWarning(const std::string& problems);

// Changes every image to fit the driver: packing, subtype and quality of
// images from other formats (only when `fileType` is not `driver`), packing
// the driver cannot keep, colour counts and start colours, over-long names.
// Each image's modified mark is cleared afterwards. Pixel depths are left
// alone: the codec decides what to do with a depth it lacks.
void ConformImages(const TavixAbout& about, int fileType, int driver, CTavixImageList& images);
