#pragma once
// CTavixImageList: an ordered list of images that reads and writes whole
// files through the codec library. The list does not own its images:
// whoever takes one out deletes it or hands it on (the document owns the
// images of its own list).

#include "app/doc/TavixImage.h"

#include <string>
#include <vector>

// The file type of a document that has none yet. Every driver index of the
// codec library, 0 included, is a real format.
constexpr int kNoFileType = -1;

class CTavixImageList : public std::vector<CTavixImage*> {
  public:
    // Appends one image per readable frame of `path` and returns the driver
    // the file was read with. The images are appended only when the read
    // gets to its end (a cancel from the progress window ends it early with
    // the frames read so far). A file no driver takes, or one whose frames
    // are not all readable, shows "An error occurred while reading ..." and
    // raises CFileException (generic); codec failures raise CFileException.
    int ReadFile(const std::string& path, bool showProgress);

    // Writes every image as one frame of `driver`. The frames go to a
    // temporary file beside `path`, which replaces `path` only when the
    // whole write succeeded: a failure raises CFileException, Cancel in the
    // progress window raises CUserException, and either way the old file is
    // untouched and the temporary file is gone. A driver that refuses to
    // write this many frames ends the write without error and without
    // touching the old file.
    void WriteFile(const std::string& path, int driver, bool showProgress);
};

// The temporary file a write of `path` goes to first.
std::string TemporarySavePath(const std::string& path);
