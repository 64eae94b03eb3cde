#include "app/doc/TavixImageList.h"

#include "app/doc/Exceptions.h"
#include "app/doc/ProgressDlg.h"
#include "app/doc/UserInterface.h"
#include "codec/TavixBinding.h"

#include <cstdio>
#include <memory>
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

void readFailed(const std::string& path) {
    char text[2048];
    snprintf(text, sizeof text,
             "An error occurred while reading '%s'. Possible causes include:\n\n"
             "\u2022 The Tavix DLL being used (see Help, About Zy... ) is not up-to-date.\n"
             "\u2022 The filetype is unsupported.\n"
             "\u2022 The file is bad.\n"
             "\u2022 The file is on a bad storage device.\n"
             "\u2022 The system is out of memory.",
             path.c_str());
    ZyUi().MessageBox(text, MsgButtons::OK, MsgIcon::Error);
    throw CFileException(CFileException::generic, path);
}

// Reads the frames of an opened stream; false when one had no record or the
// stream is not of the driver's format.
bool readFrames(ReadSession& session, const std::string& path, bool showProgress,
                std::vector<std::unique_ptr<CTavixImage>>& images) {
    CProgressDlg progress("Reading " + path, session.about.get());
    if (showProgress) {
        showProgress = progress.Create();
        if (showProgress) {
            progress.SetStatus("Opening");
            progress.SetAnimation(CProgressDlg::kOpenAnimation);
        }
    }
    bool success = TavixIs(session.stream) != 0;
    const int count = TavixOpen(&session.reader, session.stream, path.c_str(), 1);
    // A driver that took the stream but cannot open it has found the file
    // bad: that is a failed read, not an empty file.
    if (count <= 0) success = false;
    progress.SetRange(0, count > 0 ? count : 0);
    for (int i = 0; i < count; ++i) {
        if (showProgress) {
            progress.SetStatus(frameText(i, count));
            if (progress.CheckCancelButton()) break;
        }
        TavixInfoPtr info(TavixFrameInfo(session.reader, i));
        if (!info) {
            success = false;
            continue;
        }
        if (info->width <= 0 || info->height <= 0) continue;
        auto image = std::make_unique<CTavixImage>();
        image->SetInformation(*info);
        if (!TavixRead(session.reader, info.get(), image->GetBits(), image->GetPitch()))
            throw CFileException(CFileException::generic, path);
        images.push_back(std::move(image));
        info.reset();
        if (showProgress) progress.StepIt();
    }
    if (showProgress) progress.SetStatus("Closing");
    if (session.reader) {
        TavixReader reader = session.reader;
        session.reader = nullptr;
        if (!TavixClose(reader)) throw CFileException(CFileException::generic, path);
    }
    return success;
}

} // namespace

std::string TemporarySavePath(const std::string& path) {
    return path + ".zy-partial-" + std::to_string(getpid());
}

int CTavixImageList::ReadFile(const std::string& path, bool showProgress) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    int driver = kNoFileType;
    bool success = false;
    {
        ReadSession session;
        char workarea[260] = {};
        session.stream = TavixGOpen(path.c_str(), workarea);
        if (session.stream) driver = TavixGet();
        if (session.stream && driver >= 0) {
            TavixSet(driver);
            session.about.reset(TavixAboutDriver());
            if (session.about) success = readFrames(session, path, showProgress, images);
        }
    }
    if (!success) readFailed(path);
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
    progress.SetRange(0, count);

    WriteSession session;
    session.temporary = TemporarySavePath(path);
    session.stream = TavixProgramCallbacks().openwrite(session.temporary.c_str());
    if (!session.stream) throw CFileException(CFileException::generic, path);
    if (!TavixWOpen(&session.writer, session.stream, path.c_str(), count)) {
        session.writer = nullptr;
        return;
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
            throw CFileException(CFileException::generic, path);
        image->TakeModifiedMark();
        if (showProgress) progress.StepIt();
    }
    if (showProgress) progress.SetStatus("Closing");
    TavixWriter writer = session.writer;
    session.writer = nullptr;
    if (!TavixWClose(writer)) throw CFileException(CFileException::generic, path);
    intptr_t stream = session.stream;
    session.stream = 0;
    if (!TavixProgramCallbacks().close(stream)) throw CFileException(CFileException::generic, path);
    if (rename(session.temporary.c_str(), path.c_str()) != 0)
        throw CFileException(CFileException::generic, path);
    session.finished = true;
}
