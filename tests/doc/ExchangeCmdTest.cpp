// Import and export, headless, through real files and the real codec
// library: folders, naming, frame choice, comments, cancel, undo; export
// names, the overwrite question, the fit-a-copy rules and failures.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/ExportCmd.h"
#include "app/cmds/ImportCmd.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace zytest;
namespace fs = std::filesystem;

namespace {

class ExchangeTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        live = galloc_live_count();
    }
    void TearDown() override {
        doc.DeleteContents();
        EXPECT_EQ(galloc_live_count(), live);
    }
    // A one-frame PNG of w x h named by its frame name `name`.
    std::string png(const std::string& relative, int w = 4, int h = 3, const char* name = "") {
        const fs::path path = folder / relative;
        fs::create_directories(path.parent_path());
        TavixFrame frame = makeFrame(w, h, 32, name);
        std::string error;
        EXPECT_TRUE(TavixWriteFile(path.string(), TavixFind("png"), {&frame}, error)) << error;
        return path.string();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> list;
        for (int i = 0; i < doc.GetImageCount(); ++i)
            list.push_back(doc.GetImageAt(i)->GetName());
        return list;
    }
    bool import(const std::vector<std::string>& paths) {
        return CImportCmd::ImportFiles(&doc, paths);
    }

    ScopedModel model;
    TempFolder folder;
    CTavixDoc doc;
    int live = 0;
};

TEST_F(ExchangeTest, AFolderImportsEveryImageBelowItInFileSystemOrder) {
    png("art/a.png");
    png("art/deeper/b.png");
    writeMixedTvx((folder / "art/deeper/three.tvx").string(), 3);
    std::ofstream(folder / "art/notes.txt") << "not an image";
    // What the file system lists, depth first.
    std::vector<std::string> expected;
    std::function<void(const fs::path&)> walk = [&](const fs::path& dir) {
        for (const auto& entry : fs::directory_iterator(dir)) {
            if (entry.is_directory())
                walk(entry.path());
            else if (entry.path().stem() == "three")
                expected.insert(expected.end(), {"img0", "img1", "img2"});
            else if (entry.path().extension() == ".png")
                expected.push_back(entry.path().stem().string());
        }
    };
    walk(folder / "art");

    ASSERT_TRUE(import({(folder / "art").string()}));
    EXPECT_EQ(names(), expected);
    EXPECT_TRUE(model.ui.messages.empty())
        << "files no driver knows are passed over inside folders";
    EXPECT_EQ(model.ui.progress.front(), "create Importing Images");
    EXPECT_EQ(model.ui.ProgressStatuses().back(), "5");
    EXPECT_EQ(doc.GetFocusIndex(), 4);
    EXPECT_TRUE(doc.GetSelectionModel().IsSelected(4));
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent()->GetName(), "Import");
}

TEST_F(ExchangeTest, NameSettingsDecideSingleFrameNamesOnly) {
    const std::string own = (folder / "own_file.tvx").string(); // PNG keeps no frame name
    const TavixFrame named = makeFrame(4, 3, 32, "own");
    writeTvx(own, {&named});
    const std::string bare = png("bare_file.png");
    const std::string three = (folder / "three.tvx").string();
    writeMixedTvx(three, 3);
    struct Case {
        int handling, format;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {0, 0, {"own", "bare_file", "img0", "img1", "img2"}},
        {1, 0, {"own_file", "bare_file", "img0", "img1", "img2"}},
        {2, 0, {"own", "", "img0", "img1", "img2"}},
        {1, 1, {"0", "1", "img0", "img1", "img2"}},
    };
    for (const Case& c : cases) {
        doc.DeleteContents();
        model.profile.WriteInt("CImportCmd", "m_NameHandling", c.handling);
        model.profile.WriteInt("CImportCmd", "m_NameFormat", c.format);
        import({own, bare, three});
        EXPECT_EQ(names(), c.names) << c.handling << "," << c.format;
    }
}

TEST_F(ExchangeTest, TheFrameChoiceTakesSomeAllOrNone) {
    const std::string three = (folder / "three.tvx").string();
    writeMixedTvx(three, 3);
    model.ui.dialogs["CImportFramesDlg"] = [](CDialogData& data) {
        auto& choice = static_cast<CImportFramesDlgData&>(data);
        EXPECT_EQ(choice.m_Names.size(), 3u);
        choice.m_Import = {1, 0, 1};
        return true;
    };
    import({three});
    EXPECT_EQ(names(), (std::vector<std::string>{"img0", "img2"}));
    model.ui.dialogs["CImportFramesDlg"] = [](CDialogData&) { return false; };
    EXPECT_FALSE(import({three}));
    EXPECT_EQ(doc.GetImageCount(), 2);
}

TEST_F(ExchangeTest, PathToCommentIsRelativeToTheDocument) {
    const std::string file = png("sprites/hero.png");
    model.profile.WriteInt("CImportCmd", "m_PathToComment", 1);
    doc.SetPathName((folder / "level.fsh").string());
    import({file});
    EXPECT_STREQ(doc.GetImageAt(0)->GetInfo()->comment,
                 "vpath=sprites\r\nfname=hero.png\r\nsname=hero");
}

TEST_F(ExchangeTest, UndoTakesTheImportOutAndRedoPutsTheSameImagesBack) {
    doc.InsertImage(0, [] {
        auto* image = new CTavixImage;
        image->Create(2, 2, 32);
        return image;
    }());
    import({png("a.png"), png("b.png")});
    const DocSnapshot done = snapshot(doc);
    ASSERT_EQ(done.objects.size(), 3u);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(doc.GetImageCount(), 1);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, done.objects);
    EXPECT_EQ(snapshot(doc).contents, done.contents);
}

TEST_F(ExchangeTest, CancelStopsAfterTheCurrentFileAndBadFilesAreReportedAndPassed) {
    std::ofstream(folder / "broken.png") << "not a png";
    const std::string broken = (folder / "broken.png").string();
    model.ui.cancelAtStatus = "2";
    import({png("a.png"), broken, png("b.png"), png("c.png")});
    EXPECT_EQ(names(), (std::vector<std::string>{"a", "b"}));
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_NE(model.ui.messages[0].text.find("An error occurred while reading"), std::string::npos);
}

// ---- Export ---------------------------------------------------------------

TEST_F(ExchangeTest, ExportFileNames) {
    struct Case {
        const char* name;
        int number, format;
        const char* file;
    };
    const Case cases[] = {
        {"Walk_1", 3, 0, "Walk_1"}, {"Walk_1", 3, 1, "0003"}, {"Walk_1", 3, 2, "WALK_1"},
        {"Walk_1", 3, 3, "walk_1"}, {"", 12, 0, "0012"},      {"", 0, 2, "0000"},
        {"a/b\\c", 0, 0, "a_b_c"},  {"..", 5, 0, "0005"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ExportFileName(c.name, c.number, c.format), c.file) << c.name << c.format;
}

TEST_F(ExchangeTest, ExportCopiesShiftStartColoursForFormatsWithoutThem) {
    CTavixImage image;
    image.Create(2, 2, 8);
    TavixInfo& info = *image.GetInfoForWrite();
    info.startcolour = 240;
    info.numcolours = 16;
    info.packed = 1;
    TavixAbout sixteen{};
    sixteen.caps = kCapWrite | kCapPalette | kCapTrueColour;
    sixteen.colourlimit = 16;
    ASSERT_TRUE(ConformExportCopy(image, sixteen, 3, 3));
    EXPECT_EQ(image.GetInfo()->startcolour, 0);
    EXPECT_EQ(image.GetInfo()->numcolours, 256);
    EXPECT_EQ(image.GetInfo()->packed, 0);

    TavixAbout noPalette{};
    noPalette.caps = kCapWrite | kCapTrueColour;
    EXPECT_FALSE(ConformExportCopy(image, noPalette, 3, 3));
}

TEST_F(ExchangeTest, ExportWritesEachSelectedImageAndCollectsFailures) {
    import({png("one.png", 5, 4), png("two.png", 6, 2)});
    doc.GetImageAt(1)->SetName("");
    doc.GetSelectionModel().SelectAll();
    const fs::path out = folder / "out";
    fs::create_directories(out);
    std::ofstream(out / "0001.png") << "old";
    auto exportWith = [&](MsgAnswer overwrite) {
        model.ui.messages.clear();
        model.ui.progress.clear();
        model.ui.answers = {overwrite};
        model.ui.dialogs["CExportDlg"] = [&](CDialogData& data) {
            auto& d = static_cast<CExportDlgData&>(data);
            d.m_Folder = out.string();
            d.m_TavixModule = TavixFind("png");
            d.m_NameFormat = 0;
            return true;
        };
        doc.OnCmdMsg(ID_FILE_EXPORT);
    };
    exportWith(MsgAnswer::Cancel);
    EXPECT_TRUE(fs::exists(out / "one.png"));
    EXPECT_EQ(fs::file_size(out / "0001.png"), 3u) << "kept after Cancel";
    ASSERT_EQ(model.ui.messages.size(), 2u);
    EXPECT_EQ(model.ui.messages[0].text,
              "File " + (out / "0001.png").string() + " exists.  Overwrite?");
    EXPECT_EQ(model.ui.messages[1].text,
              "The following files could not be exported:\n\n0001.png\n");
    EXPECT_EQ(model.ui.ProgressStatuses(),
              (std::vector<std::string>{"Starting", "(0/2)", "(1/2)", "Ending"}));

    exportWith(MsgAnswer::OK);
    EXPECT_EQ(model.ui.messages.size(), 2u) << "two overwrite questions, no failure";
    TavixReadResult back = TavixReadFile((out / "0001.png").string());
    ASSERT_TRUE(back.ok);
    EXPECT_EQ(back.frames[0].info->width, 6);
    EXPECT_EQ(model.profile.GetString("CExportCmd", "m_strExt", ""), "png");
    EXPECT_EQ(model.profile.GetString("CExportCmd", "m_Folder", ""), out.string());
}

} // namespace
