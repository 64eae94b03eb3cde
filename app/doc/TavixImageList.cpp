#include "app/doc/TavixImageList.h"

#include "app/doc/Exceptions.h"
#include "app/doc/LibraryMessages.h"
#include "app/doc/ProgressDlg.h"
#include "app/doc/UserInterface.h"
#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string frameText(int index, int count) {
    char text[32];
    snprintf(text, sizeof text, "(%d/%d)", index + 1, count);
    return text;
}

// Everything one read holds from the codec, released in order on every way
// out.
struct ReadSession {
    intptr_t stream = 0;
    TavixReader reader = nullptr;
    TavixAboutPtr about;
    ~ReadSession() {
        if (reader) TavixClose(reader);
        about.reset();
        CloseStream();
    }
    void CloseStream() {
        if (stream) TavixProgramCallbacks().close(stream);
        stream = 0;
    }
};

// The same for a write; an unfinished write also removes its temporary file.
struct WriteSession {
    std::string temporary;
    intptr_t stream = 0;
    TavixWriter writer = nullptr;
    bool finished = false;
    ~WriteSession() {
        if (writer) TavixWClose(writer);
        if (stream) TavixProgramCallbacks().close(stream);
        if (!finished && !temporary.empty()) unlink(temporary.c_str());
    }
};

// The reason a file cannot be opened that the system knows: it is missing,
// unreadable or a folder. Empty when the system sees nothing wrong.
// A write the codec refused: its reason, or `fallback` when it gave none.
[[noreturn]] void writeFailed(const std::string& path, CLibraryMessages& messages,
                              const std::string& fallback) {
    std::string reason = messages.Take();
    if (reason.empty()) reason = fallback;
    throw CFileException("'" + path + "' was not saved:\n\n" + reason);
}

[[noreturn]] void readFailed(const std::string& path, std::string reason) {
    if (reason.empty()) reason = "no driver of the codec library can read it";
    throw CFileException("An error occurred while reading '" + path + "':\n\n" + reason);
}

std::string frameFailure(int index, CLibraryMessages& messages, const char* fallback) {
    std::string reason = messages.Take();
    if (reason.empty()) reason = fallback;
    return "frame " + std::to_string(index + 1) + ": " + reason;
}

// Reads the frames of an opened stream into `images`, noting in `report`
// each frame that fails. False when the stream is not of the driver's
// format or the driver cannot open it.
bool readFrames(ReadSession& session, const std::string& path, bool showProgress,
                std::vector<std::unique_ptr<CTavixImage>>& images, CFileReadReport& report,
                CLibraryMessages& messages) {
    CProgressDlg progress("Reading " + path, session.about.get());
    if (showProgress) {
        showProgress = progress.Create();
        if (showProgress) {
            progress.SetStatus("Opening");
            progress.SetAnimation(CProgressDlg::kOpenAnimation);
        }
    }
    if (!TavixIs(session.stream)) return false;
    const int count = TavixOpen(&session.reader, session.stream, path.c_str(), 1);
    // A driver that took the stream but cannot open it has found the file
    // bad: that is a failed read, not an empty file.
    if (count <= 0) return false;
    report.m_FrameCount = count;
    // What the driver found wrong while opening: it explains the frames
    // that fail below.
    report.m_Notes = messages.Take();
    progress.SetRange(0, count);
    for (int i = 0; i < count; ++i) {
        if (showProgress) {
            progress.SetStatus(frameText(i, count));
            if (progress.CheckCancelButton()) {
                report.m_Cancelled = true;
                break;
            }
        }
        TavixInfoPtr info(TavixFrameInfo(session.reader, i));
        if (!info) {
            report.m_Failures.push_back(
                frameFailure(i, messages, "the codec library gave no record"));
            continue;
        }
        if (info->width <= 0 || info->height <= 0) continue;
        auto image = std::make_unique<CTavixImage>();
        image->SetInformation(*info);
        if (!TavixRead(session.reader, info.get(), image->GetBits(), image->GetPitch())) {
            report.m_Failures.push_back(
                frameFailure(i, messages, "its pixels could not be decoded"));
            continue;
        }
        images.push_back(std::move(image));
        ++report.m_FramesRead;
        info.reset();
        if (showProgress) progress.StepIt();
    }
    if (showProgress) progress.SetStatus("Closing");
    if (session.reader) {
        TavixReader reader = session.reader;
        session.reader = nullptr;
        if (!TavixClose(reader)) throw CFileException(CFileException::generic, path);
    }
    return true;
}

} // namespace

std::string TemporarySavePath(const std::string& path) {
    return path + ".zy-partial-" + std::to_string(getpid());
}

std::string CFileReadReport::Describe(const std::string& path) const {
    std::string text;
    if (m_Cancelled)
        text = "Reading '" + path + "' was cancelled after " + std::to_string(m_FramesRead) +
               " of " + std::to_string(m_FrameCount) + " frames.";
    if (!m_Failures.empty()) {
        if (!text.empty()) text += "\n\n";
        text += "Only " + std::to_string(m_FramesRead) + " of " + std::to_string(m_FrameCount) +
                " frames of '" + path + "' could be read. These could not:\n";
        for (const std::string& failure : m_Failures)
            text += "\n" + failure;
        if (!m_Notes.empty()) text += "\n\nThe codec library reported:\n" + m_Notes;
    }
    return text;
}

int CTavixImageList::ReadFile(const std::string& path, bool showProgress, CFileReadReport* report) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    int driver = kNoFileType;
    bool opened = false;
    CFileReadReport own;
    CFileReadReport& noted = report ? *report : own;
    CLibraryMessages messages;
    {
        ReadSession session;
        char workarea[260] = {};
        session.stream = TavixGOpen(path.c_str(), workarea);
        if (!session.stream) {
            std::string reason = TavixFileProblem(path);
            readFailed(path, reason.empty() ? messages.Take() : reason);
        }
        driver = TavixGet();
        if (driver >= 0) {
            TavixSet(driver);
            session.about.reset(TavixAboutDriver());
            if (session.about)
                opened = readFrames(session, path, showProgress, images, noted, messages);
        }
    }
    if (!opened) readFailed(path, messages.Take());
    // Without a report every frame must read; with one, at least one must
    // when any failed.
    if (!noted.m_Failures.empty() && (!report || images.empty()))
        readFailed(path, noted.Describe(path));
    reserve(size() + images.size());
    for (auto& image : images)
        push_back(image.release());
    return driver;
}

void CTavixImageList::WriteFile(const std::string& path, int driver, bool showProgress) {
    // Without a valid driver the codec would write in whatever format is
    // current.
    if (driver < 0 || driver >= TavixCount()) throw CFileException(CFileException::generic, path);
    TavixSet(driver);
    TavixAboutPtr about(TavixAboutDriver());
    CProgressDlg progress("Writing " + path, about.get());
    if (showProgress) {
        showProgress = progress.Create();
        if (showProgress) {
            progress.SetStatus("Creating");
            progress.SetAnimation(CProgressDlg::kOpenAnimation);
        }
    }
    about.reset();
    const int count = static_cast<int>(size());
    CLibraryMessages messages;
    progress.SetRange(0, count);

    WriteSession session;
    session.temporary = TemporarySavePath(path);
    session.stream = TavixProgramCallbacks().openwrite(session.temporary.c_str());
    if (!session.stream) writeFailed(path, messages, strerror(errno));
    if (!TavixWOpen(&session.writer, session.stream, path.c_str(), count)) {
        // A format that cannot hold these images (too many, none at all)
        // refuses here: nothing was written and the old file stays.
        session.writer = nullptr;
        writeFailed(path, messages,
                    count == 0
                        ? std::string("a file of this format needs at least one image")
                        : "the format cannot hold these " + std::to_string(count) + " images");
    }
    for (int i = 0; i < count; ++i) {
        if (showProgress) {
            progress.SetStatus(frameText(i, count));
            if (progress.CheckCancelButton()) throw CUserException();
        }
        CTavixImage* image = (*this)[static_cast<size_t>(i)];
        if (!image) throw CFileException(CFileException::generic, path);
        const TavixInfo* info = image->GetInfoForWrite();
        if (!info || !TavixWrite(session.writer, info, image->GetBits(), image->GetPitch()))
            writeFailed(path, messages, "image " + std::to_string(i + 1) + " could not be written");
        image->TakeModifiedMark();
        if (showProgress) progress.StepIt();
    }
    if (showProgress) progress.SetStatus("Closing");
    TavixWriter writer = session.writer;
    session.writer = nullptr;
    if (!TavixWClose(writer)) writeFailed(path, messages, "the file could not be completed");
    intptr_t stream = session.stream;
    session.stream = 0;
    if (!TavixProgramCallbacks().close(stream)) throw CFileException(CFileException::generic, path);
    if (rename(session.temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        throw CFileException("'" + path + "' was not saved:\n\n" + strerror(error));
    }
    session.finished = true;
}
