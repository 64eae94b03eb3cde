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

// What a read met besides the frames it took: frames that failed (with the
// codec library's reason) and a cancel from the progress window.
struct CFileReadReport {
    int m_FrameCount = 0; // the frames the file says it holds
    int m_FramesRead = 0;
    bool m_Cancelled = false;
    std::vector<std::string> m_Failures; // "frame 5: <reason>"
    std::string m_Notes;                 // what the codec said when it opened the file

    bool Complete() const { return !m_Cancelled && m_Failures.empty(); }
    // Tells the user which frames of `path` are missing and why.
    std::string Describe(const std::string& path) const;
};

class CTavixImageList : public std::vector<CTavixImage*> {
  public:
    // Appends one image per readable frame of `path` and returns the driver
    // the file was read with.
    //
    // With a report, a frame that fails is noted there and the read goes
    // on with the next one; Cancel in the progress window ends it with the
    // frames read so far. Without one, any failed frame fails the read and
    // a cancel keeps what was read. A file that cannot be opened at all, no
    // driver takes, or that gives no frame although it has failing ones,
    // raises CFileException whose text names the reason (the system's or
    // the codec library's).
    int ReadFile(const std::string& path, bool showProgress, CFileReadReport* report = nullptr);

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
