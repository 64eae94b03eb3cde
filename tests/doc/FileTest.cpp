// Opening and saving through the real codec library: progress texts,
// guards, safe saving, and the save-time format check.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Conform.h"
#include "app/doc/TavixDoc.h"
#include "codec/TavixBinding.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <unistd.h>

using namespace zytest;
namespace fs = std::filesystem;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::vector<std::string> folderEntries(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class FileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        source = (folder / "five.tvx").string();
        writeMixedTvx(source, 5);
    }
    // Opens `source` and forgets what the open showed.
    void openSource() {
        ASSERT_TRUE(doc.OnOpenDocument(source));
        model.ui = ScriptedUi();
        model.ui.forwardCrashReports = false;
    }
    ScopedModel model;
    TempFolder folder;
    std::string source;
    CTavixDoc doc;
};

} // namespace

TEST_F(FileTest, OpenReadsEveryFrameWithProgress) {
    RecordingView view;
    doc.AddView(&view);
    doc.SetModifiedFlag(true);
    ASSERT_TRUE(doc.OnOpenDocument(source));
    EXPECT_EQ(doc.GetImageCount(), 5);
    EXPECT_EQ(doc.GetFileType(), tvxDriver());
    EXPECT_EQ(doc.GetPathName(), source);
    EXPECT_FALSE(doc.IsModified());
    EXPECT_EQ(doc.GetBusyCount(), 0);
    EXPECT_EQ(doc.GetImageAt(3)->GetName(), "img3");
    EXPECT_EQ(doc.GetImageAt(3)->GetBitCount(), 32);
    EXPECT_EQ(view.hints, (std::vector<std::string>{"all", "insert 0 5"}));
    EXPECT_EQ(
        model.ui.progress,
        (std::vector<std::string>{"create Reading " + source, "animation 109", "status Opening",
                                  "animation 223", "status (1/5)", "status (2/5)", "status (3/5)",
                                  "status (4/5)", "status (5/5)", "status Closing", "destroy"}));
    EXPECT_TRUE(model.ui.IsMainWindowEnabled());
    // The pixels are those the codec wrote.
    TavixFrame expected = makeFrame(6, 4, 32, "img1");
    EXPECT_EQ(argbPixels(doc.GetImageAt(1)->ToFrame()), argbPixels(expected));
}

TEST_F(FileTest, CancelledOrPartlyReadOpensAreUntitledAndModified) {
    // Five frames written as FSH, the file cut short in the last frame.
    const std::string cut = (folder / "cut.fsh").string();
    {
        std::vector<TavixFrame> frames;
        std::vector<const TavixFrame*> pointers;
        for (int i = 0; i < 5; ++i)
            frames.push_back(makeFrame(16, 16, 32, ("img" + std::to_string(i)).c_str()));
        for (const TavixFrame& frame : frames)
            pointers.push_back(&frame);
        std::string error;
        ASSERT_TRUE(TavixWriteFile(cut, TavixFind("newfsh"), pointers, error)) << error;
        fs::resize_file(cut, fs::file_size(cut) - 200);
    }
    struct Case {
        const char* what;
        std::string path;
        std::string cancelAt;
        int images;
        std::vector<std::string> told;
    } cases[] = {
        {"cancelled",
         source,
         "(3/5)",
         2,
         {"Reading '" + source + "' was cancelled after 2 of 5 frames."}},
        {"cut short",
         cut,
         "",
         4,
         {"Only 4 of 5 frames of '" + cut + "' could be read",
          "frame 5: ", "The codec library reported:\n"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        model.ui.messages.clear();
        model.ui.cancelAtStatus = c.cancelAt;
        ASSERT_TRUE(doc.OnOpenDocument(c.path));
        EXPECT_EQ(doc.GetImageCount(), c.images);
        ASSERT_EQ(model.ui.messages.size(), 1u);
        for (const std::string& part : c.told)
            EXPECT_TRUE(contains(model.ui.messages[0].text, part)) << model.ui.messages[0].text;
        // A plain Save must ask for a name: it cannot write over the file.
        EXPECT_EQ(doc.GetPathName(), "");
        EXPECT_EQ(doc.GetTitle(), fs::path(c.path).filename().string() + " (incomplete)");
        EXPECT_TRUE(doc.IsModified());
        const auto size = fs::file_size(c.path);
        model.ui.dialogs["CTavixFileDialog"] = [](CDialogData&) { return false; };
        EXPECT_FALSE(doc.OnFileSave());
        EXPECT_EQ(fs::file_size(c.path), size);
        EXPECT_TRUE(doc.IsModified());
    }
}

TEST_F(FileTest, UnreadableFilesNameTheirReasonAndGiveAnEmptyDocument) {
    const std::string garbage = (folder / "bad.tvx").string();
    std::ofstream(garbage) << "TVX1 but not really";
    const std::string unreadable = (folder / "locked.tvx").string();
    writeMixedTvx(unreadable, 1);
    fs::permissions(unreadable, fs::perms::none);
    struct Case {
        std::string path;
        std::string reason;
    } cases[] = {
        {garbage, "tvx"}, // the codec library's own words
        {(folder / "missing.tvx").string(), "No such file or directory"},
        {folder.path().string(), "Is a directory"},
        {unreadable, getuid() == 0 ? "" : "Permission denied"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        model.ui.messages.clear();
        if (c.reason.empty()) continue; // root reads everything
        EXPECT_FALSE(doc.OnOpenDocument(c.path));
        EXPECT_EQ(doc.GetImageCount(), 0);
        EXPECT_EQ(doc.GetBusyCount(), 0);
        ASSERT_EQ(model.ui.messages.size(), 1u);
        const std::string& text = model.ui.messages[0].text;
        EXPECT_EQ(text.rfind("An error occurred while reading '" + c.path + "':\n\n", 0), 0u)
            << text;
        EXPECT_TRUE(contains(text, c.reason)) << text;
        EXPECT_FALSE(contains(text, "Possible causes")) << text;
        EXPECT_TRUE(model.ui.crashLines.empty());
    }
}

TEST_F(FileTest, UnexpectedFailuresWriteTheCrashLineAndShowTheErrorDialog) {
    model.ui.throwAtStatus = "(2/5)";
    EXPECT_FALSE(doc.OnOpenDocument(source));
    EXPECT_EQ(doc.GetImageCount(), 0);
    EXPECT_EQ(model.ui.logLines,
              std::vector<std::string>{"Zy, crash, OnOpenDocument, Path:" + source});
    ASSERT_EQ(model.ui.exceptionDialogs.size(), 1u);
    const CExceptionDlgTexts& open = model.ui.exceptionDialogs[0];
    EXPECT_EQ(open.m_Caption, "Zy Program Error");
    EXPECT_EQ(open.m_What, "The file you are opening, \"" + source +
                               "\", is causing an unidentified program error.  No data has been "
                               "lost but the file has not been opened");
    EXPECT_EQ(open.m_Scope, "The problem is the result of a programming error and may cause "
                            "additional problems.");
    EXPECT_EQ(open.m_Action, "Ensure that the file is valid by opening it in a different "
                             "application and resaving it.  Also send an email with the file "
                             "attached to the Zy maintainer.  Include any additional information "
                             "you feel is important.");
    EXPECT_TRUE(model.ui.IsMainWindowEnabled());

    model.ui.throwAtStatus.clear();
    openSource();
    model.ui.throwAtStatus = "(4/5)";
    doc.SetModifiedFlag(true);
    const std::string target = (folder / "out.tvx").string();
    EXPECT_FALSE(doc.OnSaveDocument(target));
    EXPECT_EQ(model.ui.logLines,
              std::vector<std::string>{"Zy, crash, OnSaveDocument, Path:" + target +
                                       " FileType:" + std::to_string(tvxDriver())});
    ASSERT_EQ(model.ui.exceptionDialogs.size(), 1u);
    EXPECT_EQ(model.ui.exceptionDialogs[0].m_What,
              "The file you are saving, \"" + target +
                  "\", is causing an unidentified program error.  No data has been lost but your "
                  "file has not been saved");
    EXPECT_EQ(model.ui.exceptionDialogs[0].m_Action,
              "In the meantime, save the file in a different file format such as Tavix Images. "
              "Contact the Zy maintainer indicating which file format you were trying to save.");
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(doc.GetImageCount(), 5);
    EXPECT_EQ(doc.GetBusyCount(), 0);
    EXPECT_EQ(folderEntries(folder.path()), std::vector<std::string>{"five.tvx"});
}

TEST_F(FileTest, SaveWritesEveryImageAndClearsTheMarks) {
    openSource();
    for (int i = 0; i < doc.GetImageCount(); ++i)
        doc.GetImageAt(i)->GetInfoForWrite();
    const std::string target = (folder / "copy.tvx").string();
    ASSERT_TRUE(doc.OnSaveDocument(target));
    EXPECT_EQ(model.ui.ProgressStatuses(),
              (std::vector<std::string>{"Creating", "(1/5)", "(2/5)", "(3/5)", "(4/5)", "(5/5)",
                                        "Closing"}));
    EXPECT_EQ(model.ui.progress.front(), "create Writing " + target);
    for (int i = 0; i < doc.GetImageCount(); ++i)
        EXPECT_EQ(doc.GetImageAt(i)->GetModifiedMark(), 0);
    CTavixDoc again;
    ASSERT_TRUE(again.OnOpenDocument(target));
    EXPECT_EQ(snapshot(again).contents, snapshot(doc).contents);
    EXPECT_EQ(folderEntries(folder.path()), (std::vector<std::string>{"copy.tvx", "five.tvx"}));
}

TEST_F(FileTest, FailedOrCancelledSaveKeepsTheOldFile) {
    const std::string old = (folder / "old.tvx").string();
    writeMixedTvx(old, 2);
    openSource();
    doc.SetModifiedFlag(true);

    model.ui.cancelAtStatus = "(3/5)";
    EXPECT_FALSE(doc.OnSaveDocument(old));
    EXPECT_TRUE(model.ui.messages.empty()); // a cancel is not reported
    model.ui.cancelAtStatus.clear();

    // Replacing a folder fails at the very end, after every frame was written.
    const fs::path blocker = folder / "blocker.tvx";
    fs::create_directory(blocker);
    EXPECT_FALSE(doc.OnSaveDocument(blocker.string()));
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_NE(model.ui.messages[0].text.find(blocker.string()), std::string::npos);

    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(TavixReadFile(old).frames.size(), 2u);
    EXPECT_TRUE(fs::is_directory(blocker));
    EXPECT_EQ(folderEntries(folder.path()),
              (std::vector<std::string>{"blocker.tvx", "five.tvx", "old.tvx"}));
    EXPECT_TRUE(model.ui.IsMainWindowEnabled());
}

// ---- The format check ----------------------------------------------------------

namespace {

TavixAbout aboutWith(uint32_t caps, int colourLimit = 0, int nameLimit = 0,
                     uint32_t formatid = 0x41424300) {
    TavixAbout about{};
    about.caps = caps;
    about.colourlimit = colourLimit;
    about.namelimit = nameLimit;
    about.formatid = formatid;
    return about;
}

constexpr uint32_t kAll =
    kCapWrite | kCapPalette | kCapTrueColour | kCapMultiImage | kCapPacked | kCapStartColour;

struct OwnedList {
    CTavixImageList list;
    ~OwnedList() {
        for (CTavixImage* image : list)
            delete image;
    }
    TavixInfo& add(int bpp, const char* name = "", int colours = 0) {
        auto* image = new CTavixImage;
        image->Create(2, 2, bpp);
        image->SetName(name);
        image->GetInfoForWrite()->numcolours = colours;
        list.push_back(image);
        return *image->GetInfoForWrite();
    }
};

} // namespace

TEST(Conform, ProblemLinesComeInTheirFixedOrder) {
    ScopedModel model;
    OwnedList images;
    images.add(8, "abcdef", 256).startcolour = 3;
    images.add(32, "ab").packed = 1;
    struct {
        TavixAbout about;
        const char* lines;
    } cases[] = {
        {aboutWith(kAll), ""},
        {aboutWith(kAll & ~kCapPalette), "    - palette based images (<= 8 bpp)\n"},
        {aboutWith(kCapPackedAlt | kCapWrite | kCapPalette | kCapTrueColour | kCapMultiImage |
                   kCapStartColour),
         ""},
        {aboutWith(0, 16, 5), "    - saving files\n"
                              "    - palette based images (<= 8 bpp)\n"
                              "    - true color images (> 8 bpp)\n"
                              "    - multiple images\n"
                              "    - packed images\n"
                              "    - start colour values > 0\n"
                              "    - color index values > 16\n"
                              "    - frame names with 5 or more characters\n"},
        {aboutWith(kAll, 256, 6), ""}, // a name exactly as long as the limit passes
    };
    for (const auto& c : cases)
        EXPECT_EQ(ConformProblems(c.about, images.list), c.lines);
    EXPECT_EQ(ConformWarning("    - packed images\n"),
              "WARNING: The file format you have chosen does not support all of the options "
              "present in the current document.\nThe options not supported are:\n    - packed "
              "images\n\nPressing OK will cause Zy to attempt to make your document conform but "
              "you will probably lose some data.\nPress Cancel to stop the operation and leave "
              "your data untouched.");
}

TEST(Conform, ChangesFollowTheDriversLimits) {
    ScopedModel model;
    OwnedList images;
    for (int bpp : {4, 8, 32}) {
        TavixInfo& info = images.add(bpp, "abcdefgh", 256);
        info.startcolour = 5;
        info.packed = 2;
        info.subtype = 7;
        info.quality = 50;
        info.formatid = 0x41424301; // same format family as the driver
    }
    images.list[2]->GetInfoForWrite()->formatid = 0x58595A00; // from another format

    ConformImages(aboutWith(kCapWrite | kCapPacked, 16, 6), 1, 2, images.list);
    struct {
        int colours, packed, subtype, quality;
    } expected[] = {{16, 2, 7, 50}, {256, 2, 7, 50}, {0, 0, 0, 100}};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const TavixInfo& info = *images.list[i]->GetInfo();
        EXPECT_EQ(info.numcolours, expected[i].colours); // the limit itself is not applied
        EXPECT_EQ(info.startcolour, 0);
        EXPECT_EQ(info.packed, expected[i].packed);
        EXPECT_EQ(info.subtype, expected[i].subtype);
        EXPECT_EQ(info.quality, expected[i].quality);
        EXPECT_STREQ(info.framename, "abcdef");
        EXPECT_EQ(images.list[i]->GetModifiedMark(), 0);
    }

    // Start colours kept and no colour limit: counts and start stay; packing
    // the driver cannot keep goes.
    OwnedList kept;
    TavixInfo& info = kept.add(8, "x", 200);
    info.startcolour = 5;
    info.packed = 1;
    ConformImages(aboutWith(kCapStartColour), 1, 2, kept.list);
    EXPECT_EQ(kept.list[0]->GetInfo()->numcolours, 200);
    EXPECT_EQ(kept.list[0]->GetInfo()->startcolour, 5);
    EXPECT_EQ(kept.list[0]->GetInfo()->packed, 0);
}

TEST_F(FileTest, ConformWarnsAndConvertsForAnotherFormat) {
    openSource();
    doc.GetImageAt(0)->GetInfoForWrite()->startcolour = 4;
    const int fsh = TavixFind("newfsh");
    ASSERT_GE(fsh, 0);
    // Cancel leaves everything as it was.
    const DocSnapshot before = snapshot(doc);
    model.ui.answers = {MsgAnswer::Cancel};
    EXPECT_FALSE(doc.Conform(fsh));
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_EQ(model.ui.messages[0].text, ConformWarning("    - start colour values > 0\n"));
    EXPECT_EQ(model.ui.messages[0].buttons, MsgButtons::OKCancel);
    EXPECT_EQ(doc.GetFileType(), tvxDriver());
    EXPECT_EQ(snapshot(doc).contents, before.contents);

    // The own format is never checked.
    EXPECT_TRUE(doc.Conform(tvxDriver()));
    EXPECT_EQ(model.ui.messages.size(), 1u);

    EXPECT_TRUE(doc.Conform(fsh));
    EXPECT_EQ(doc.GetFileType(), fsh);
    for (int i = 0; i < doc.GetImageCount(); ++i) {
        const TavixInfo& info = *doc.GetImageAt(i)->GetInfo();
        EXPECT_EQ(info.startcolour, 0);
        EXPECT_EQ(info.numcolours, info.bpp > 8 ? 0 : 256);
        EXPECT_EQ(info.quality, 100);
    }
}

TEST_F(FileTest, SaveAsAnotherFormatThroughTheFileDialog) {
    openSource();
    const int tga = TavixFind("tga");
    ASSERT_GE(tga, 0);
    const std::string target = (folder / "one.tga").string();
    model.ui.dialogs["CTavixFileDialog"] = [&](CDialogData& data) {
        auto& file = static_cast<CFileDialogData&>(data);
        EXPECT_FALSE(file.m_Open);
        EXPECT_EQ(file.m_Path, source);
        EXPECT_EQ(file.m_FileType, tvxDriver());
        file.m_Path = target;
        file.m_FileType = tga;
        return true;
    };
    // Targa holds one image: the check names the others, and the driver's
    // refusal to write five frames is an error that changes nothing.
    doc.GetImageAt(0)->GetInfoForWrite()->startcolour = 4;
    doc.GetImageAt(0)->TakeModifiedMark();
    doc.SetModifiedFlag(true);
    const DocSnapshot before = snapshot(doc);
    EXPECT_FALSE(doc.OnFileSaveAs());
    ASSERT_EQ(model.ui.messages.size(), 2u);
    EXPECT_EQ(model.ui.messages[0].text,
              ConformWarning("    - multiple images\n    - start colour values > 0\n"));
    EXPECT_EQ(model.ui.messages[1].text.rfind("'" + target + "' was not saved:\n\n", 0), 0u);
    EXPECT_GT(model.ui.messages[1].text.size(), ("'" + target + "' was not saved:\n\n").size());
    EXPECT_EQ(model.ui.messages[1].icon, MsgIcon::Error);
    EXPECT_FALSE(fs::exists(target));
    EXPECT_EQ(doc.GetPathName(), source);
    EXPECT_EQ(doc.GetFileType(), tvxDriver());
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(snapshot(doc).contents, before.contents); // the format check was put back
    EXPECT_EQ(doc.GetImageAt(0)->GetModifiedMark(), 0);
    EXPECT_EQ(folderEntries(folder.path()), std::vector<std::string>{"five.tvx"});
    model.ui.messages.clear();

    // One image goes through.
    while (doc.GetImageCount() > 1)
        doc.RemoveImage(1);
    doc.SetModifiedFlag(true);
    EXPECT_TRUE(doc.OnFileSaveAs());
    EXPECT_FALSE(doc.IsModified());
    EXPECT_EQ(doc.GetPathName(), target);
    TavixReadResult back = TavixReadFile(target);
    ASSERT_EQ(back.frames.size(), 1u);
    // Targa keeps no palette alpha: compare the colours.
    auto rgb = [](std::vector<uint32_t> pixels) {
        for (uint32_t& p : pixels)
            p &= 0x00FFFFFF;
        return pixels;
    };
    EXPECT_EQ(rgb(argbPixels(back.frames[0])), rgb(argbPixels(doc.GetImageAt(0)->ToFrame())));

    // A cancelled dialog changes nothing.
    model.ui.dialogs["CTavixFileDialog"] = [](CDialogData&) { return false; };
    EXPECT_FALSE(doc.OnFileSaveAs());
    EXPECT_EQ(doc.GetFileType(), tga);
}

TEST_F(FileTest, ASaveTheDriverRefusesIsAnErrorAndKeepsTheOldFile) {
    // Every image deleted, then saved over the file: the format refuses a
    // file without images, and the old file keeps its frame.
    struct Case {
        const char* driver;
        const char* extension;
    } cases[] = {{"tga", "tga"}, {"png", "png"}, {"newfsh", "fsh"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.driver);
        const std::string old = (folder / (std::string("old.") + c.extension)).string();
        TavixFrame frame = makeFrame(8, 8, 32, "keep");
        std::string error;
        ASSERT_TRUE(TavixWriteFile(old, TavixFind(c.driver), {&frame}, error)) << error;
        ASSERT_TRUE(doc.OnOpenDocument(old));
        while (doc.GetImageCount() > 0)
            doc.RemoveImage(0);
        doc.SetModifiedFlag(true);
        model.ui.messages.clear();
        const auto bytes = fs::file_size(old);
        EXPECT_FALSE(doc.OnFileSave());
        EXPECT_TRUE(doc.IsModified());
        EXPECT_EQ(doc.GetPathName(), old);
        EXPECT_EQ(TavixReadFile(old).frames.size(), 1u);
        EXPECT_EQ(fs::file_size(old), bytes);
        ASSERT_EQ(model.ui.messages.size(), 1u);
        EXPECT_EQ(model.ui.messages[0].text.rfind("'" + old + "' was not saved:\n\n", 0), 0u)
            << model.ui.messages[0].text;
    }
    EXPECT_EQ(folderEntries(folder.path()),
              (std::vector<std::string>{"five.tvx", "old.fsh", "old.png", "old.tga"}));
}

TEST_F(FileTest, UndoingBackToTheSavedStateClearsTheModifiedFlag) {
    openSource();
    struct Step {
        const char* what;
        std::function<void()> act;
        bool modified;
    } steps[] = {
        {"flip", [&] { doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL); }, true},
        {"undo", [&] { doc.OnCmdMsg(ID_EDIT_UNDO); }, false},
        {"redo", [&] { doc.OnCmdMsg(ID_EDIT_UNDO); }, true},
        {"save", [&] { ASSERT_TRUE(doc.OnFileSave()); }, false},
        {"undo after the save", [&] { doc.OnCmdMsg(ID_EDIT_UNDO); }, true},
        {"redo to the saved state", [&] { doc.OnCmdMsg(ID_EDIT_UNDO); }, false},
        {"flip again", [&] { doc.OnCmdMsg(ID_IMAGE_FLIP_VERTICAL); }, true},
        {"undo it", [&] { doc.OnCmdMsg(ID_EDIT_UNDO); }, false},
    };
    for (const Step& step : steps) {
        step.act();
        EXPECT_EQ(doc.IsModified(), step.modified) << step.what;
    }
}
