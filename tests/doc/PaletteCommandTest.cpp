// The palette commands through the command framework, as the menus and the
// palette well start them: which colours they take from the colour
// selection, what they do to pixels and palettes, what they refuse, and
// that Undo gives back exactly the images that were there.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/MoveColorCmd.h"
#include "app/cmds/PaletteOps.h"
#include "app/cmds/SetPaletteCmd.h"
#include "app/cmds/SortPalCmd.h"
#include "app/cmds/SwapColorCmd.h"
#include "app/doc/CmdUI.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

using namespace zytest;
using palette_ops::argb;

namespace {

class PaletteTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        live = galloc_live_count();
        ZyColourSelection().Clear();
    }
    void TearDown() override {
        doc.DeleteContents();
        ZyColourSelection().Clear();
        EXPECT_EQ(galloc_live_count(), live);
    }
    // An 8-bit image (pixels 3x + 5y, a palette of distinct colours) or a
    // 32-bit one, appended to the document.
    CTavixImage* add(int bits, int w = 6, int h = 5, const char* name = "") {
        TavixFrame frame = makeFrame(w, h, bits, name);
        std::unique_ptr<CTavixImage> image = CTavixImage::FromFrame(frame);
        doc.InsertImage(doc.GetImageCount() - 1, image.release());
        return doc.GetImageAt(doc.GetImageCount() - 1);
    }
    void selectColours(std::initializer_list<int> indices) {
        for (int i : indices)
            ZyColourSelection().Select(i);
    }
    void run(unsigned id) { doc.GetCommandHandler().OnCommandRange(id); }
    bool enabled(unsigned id) {
        CCmdUI ui(id);
        doc.GetCommandHandler().OnUpdateCommandRange(&ui);
        return ui.m_bEnabled;
    }
    // Every pixel's colour, row by row: what the user sees.
    static std::vector<uint32_t> picture(const CTavixImage& image) {
        std::vector<uint32_t> colours;
        for (int y = 0; y < image.GetHeight(); ++y)
            for (int x = 0; x < image.GetWidth(); ++x)
                colours.push_back(image.GetPixelValue(x, y));
        return colours;
    }
    static std::vector<int> indices(const CTavixImage& image) {
        std::vector<int> list;
        for (int y = 0; y < image.GetHeight(); ++y)
            for (int x = 0; x < image.GetWidth(); ++x)
                list.push_back(image.GetIndex(x, y));
        return list;
    }
    static uint32_t entry(const CTavixImage& image, int index) {
        TavixColour palette[256];
        image.GetPalette(palette);
        return argb(palette[index]);
    }
    // Undo gives the very image objects back with unchanged contents; Redo
    // puts the command's results back.
    void expectUndoRestores(const DocSnapshot& before) {
        const DocSnapshot after = snapshot(doc);
        doc.GetCommandHandler().OnUndo();
        const DocSnapshot undone = snapshot(doc);
        EXPECT_EQ(undone.objects, before.objects);
        EXPECT_EQ(undone.contents, before.contents);
        doc.GetCommandHandler().OnUndo();
        EXPECT_EQ(snapshot(doc).contents, after.contents);
    }

    ScopedModel model;
    CTavixDoc doc;
    int live = 0;
};

// ---- Swap and exchange ---------------------------------------------------------

struct SwapCase {
    const char* what;
    unsigned id;
    std::vector<int> selected; // in the palette well
    int dialog1, dialog2;      // typed into the dialog when it shows
    bool dialogShown;
    int expect1, expect2; // the two entries that trade places
    bool pictureKept;
};

TEST_F(PaletteTest, SwapAndExchangeTradeTwoEntries) {
    const SwapCase cases[] = {
        {"two selected, swap", ID_PALETTE_SWAP_COLORS, {2, 13}, 0, 0, false, 2, 13, true},
        {"two selected, exchange", ID_PALETTE_EXCHANGE_COLORS, {2, 13}, 0, 0, false, 2, 13, false},
        {"none selected asks", ID_PALETTE_SWAP_COLORS, {}, 8, 3, true, 8, 3, true},
        {"three selected asks, lowest and highest offered",
         ID_PALETTE_EXCHANGE_COLORS,
         {3, 5, 9},
         -1,
         -1,
         true,
         3,
         9,
         false},
        {"same index twice, swap", ID_PALETTE_SWAP_COLORS, {}, 7, 7, true, 7, 7, true},
        {"same index twice, exchange", ID_PALETTE_EXCHANGE_COLORS, {}, 7, 7, true, 7, 7, true},
    };
    for (const SwapCase& c : cases) {
        SCOPED_TRACE(c.what);
        doc.DeleteContents();
        ZyColourSelection().Clear();
        model.ui.dialogsShown.clear();
        add(8);
        add(32);
        doc.GetSelectionModel().SelectAll();
        for (int i : c.selected)
            ZyColourSelection().Select(i);
        model.ui.dialogs["CSwapColorDlg"] = [&](CDialogData& data) {
            auto& swap = static_cast<CSwapColorDlgData&>(data);
            if (c.dialog1 >= 0) swap.m_Index1 = c.dialog1;
            if (c.dialog2 >= 0) swap.m_Index2 = c.dialog2;
            return true;
        };
        const CTavixImage& source = *doc.GetImageAt(0);
        const std::vector<uint32_t> picture0 = picture(source);
        const std::vector<int> indices0 = indices(source);
        const uint32_t colour1 = entry(source, c.expect1), colour2 = entry(source, c.expect2);
        const std::string deep0 = imageBytes(*doc.GetImageAt(1));
        const DocSnapshot before = snapshot(doc);

        const int submitted = doc.GetCommandHandler().GetSubmitCount();
        run(c.id);
        ASSERT_EQ(doc.GetCommandHandler().GetSubmitCount(), submitted + 1);
        EXPECT_EQ(!model.ui.dialogsShown.empty(), c.dialogShown);
        const CTavixImage& result = *doc.GetImageAt(0);
        EXPECT_EQ(entry(result, c.expect1), colour2);
        EXPECT_EQ(entry(result, c.expect2), colour1);
        EXPECT_EQ(picture(result) == picture0, c.pictureKept);
        std::vector<int> expected = indices0;
        if (c.id == ID_PALETTE_SWAP_COLORS)
            for (int& index : expected)
                index = index == c.expect1 ? c.expect2 : index == c.expect2 ? c.expect1 : index;
        EXPECT_EQ(indices(result), expected);
        EXPECT_EQ(imageBytes(*doc.GetImageAt(1)), deep0) << "true colour left as it was";
        expectUndoRestores(before);
    }
}

TEST_F(PaletteTest, SwapSavesBothIndicesUnderTheFirstKey) {
    add(8);
    model.profile.WriteInt("CSwapColorCmd", "m_Index1", 4);
    model.profile.WriteInt("CSwapColorCmd", "m_Index2", 6);
    CSwapColorDlgData offered;
    model.ui.dialogs["CSwapColorDlg"] = [&](CDialogData& data) {
        offered = static_cast<CSwapColorDlgData&>(data);
        static_cast<CSwapColorDlgData&>(data).m_Index2 = 9;
        return true;
    };
    run(ID_PALETTE_SWAP_COLORS);
    EXPECT_EQ(offered.m_Index1, 4);
    EXPECT_EQ(offered.m_Index2, 6);
    EXPECT_EQ(model.profile.GetInt("CSwapColorCmd", "m_Index1", -1), 9);
    EXPECT_EQ(model.profile.GetInt("CSwapColorCmd", "m_Index2", -1), 6) << "never written";
}

TEST_F(PaletteTest, CancelledDialogsChangeNothing) {
    add(8);
    const DocSnapshot before = snapshot(doc);
    for (const char* dialog : {"CSwapColorDlg", "CMoveColorDlg", "CSortPalDlg", "CSetPaletteDlg"})
        model.ui.dialogs[dialog] = [](CDialogData&) { return false; };
    ZyColourSelection().Select(1);
    for (unsigned id : {ID_PALETTE_SWAP_COLORS, ID_PALETTE_MOVE_COLORS, ID_PALETTE_SORT,
                        ID_IMAGE_SET_PALETTE_SELECTED})
        run(id);
    EXPECT_EQ(doc.GetCommandHandler().GetSubmitCount(), 0);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    EXPECT_TRUE(model.profile.GetString("CSortPalCmd", "m_SortStr", "none") == "none");
}

// ---- Move -------------------------------------------------------------------------

TEST_F(PaletteTest, MoveSendsTheSelectedColoursPixelsToTheTarget) {
    CTavixImage* image = add(8);
    EXPECT_FALSE(enabled(ID_PALETTE_MOVE_COLORS)) << "no colour selected";
    selectColours({5, 8});
    EXPECT_TRUE(enabled(ID_PALETTE_MOVE_COLORS));
    const std::vector<int> indices0 = indices(*image);
    TavixColour palette0[256];
    image->GetPalette(palette0);
    const DocSnapshot before = snapshot(doc);
    model.ui.dialogs["CMoveColorDlg"] = [](CDialogData& data) {
        static_cast<CMoveColorDlgData&>(data).m_Target = 200;
        return true;
    };
    run(ID_PALETTE_MOVE_COLORS);
    std::vector<int> expected = indices0;
    for (int& index : expected)
        if (index == 5 || index == 8) index = 200;
    EXPECT_EQ(indices(*doc.GetImageAt(0)), expected);
    TavixColour palette[256];
    doc.GetImageAt(0)->GetPalette(palette);
    EXPECT_EQ(memcmp(palette, palette0, sizeof palette), 0);
    expectUndoRestores(before);

    // The next dialog offers the last target.
    int offered = -1;
    model.ui.dialogs["CMoveColorDlg"] = [&](CDialogData& data) {
        offered = static_cast<CMoveColorDlgData&>(data).m_Target;
        return false;
    };
    run(ID_PALETTE_MOVE_COLORS);
    EXPECT_EQ(offered, 200);
}

// ---- Remap ------------------------------------------------------------------------

// A palette image whose entries 3 and 7 lie at the same distance from
// grey 0x848484 (a colour the table's 5-bit keys give back exactly),
// entry 9 is near-black, entry 0 black; all others far.
void setRemapPalette(CTavixImage& image) {
    for (int i = 0; i < 256; ++i)
        image.SetPaletteEntry(i, palette_ops::colour(0xFFFFFF00u));
    image.SetPaletteEntry(0, palette_ops::colour(0xFF000000u));
    image.SetPaletteEntry(3, palette_ops::colour(0xFF848474u));
    image.SetPaletteEntry(7, palette_ops::colour(0xFF848494u));
    image.SetPaletteEntry(9, palette_ops::colour(0xFF070707u));
}

struct RemapCase {
    const char* what;
    unsigned id;
    std::vector<int> selected;
    uint32_t colour;
    int expected;
};

TEST_F(PaletteTest, RemapFindsTheNearestCandidateLowestIndexFirst) {
    const RemapCase cases[] = {
        {"tie, exact", ID_IMAGE_REMAP_PALETTE_BETTER, {}, 0xFF848484u, 3},
        {"tie, table", ID_IMAGE_REMAP_PALETTE, {}, 0xFF848484u, 3},
        {"tie, only the higher a candidate",
         ID_IMAGE_REMAP_PALETTE_BETTER,
         {7, 200},
         0xFF848484u,
         7},
        {"one selected is as none: all are candidates",
         ID_IMAGE_REMAP_PALETTE_BETTER,
         {7},
         0xFF848484u,
         3},
        // The table keys by the top five bits: 0x06 falls with black.
        {"low bits, exact", ID_IMAGE_REMAP_PALETTE_BETTER, {}, 0xFF060606u, 9},
        {"low bits, table", ID_IMAGE_REMAP_PALETTE, {}, 0xFF060606u, 0},
    };
    for (const RemapCase& c : cases) {
        SCOPED_TRACE(c.what);
        doc.DeleteContents();
        ZyColourSelection().Clear();
        setRemapPalette(*add(8, 2, 2));
        CTavixImage* deep = add(32, 3, 2, "deep");
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                memcpy(deep->GetPixelAddress(x, y), &c.colour, 4);
        doc.GetSelectionModel().Select(1);
        doc.SetFocus(0, false);
        doc.GetSelectionModel().Select(0, false);
        selectColours(std::initializer_list<int>());
        for (int i : c.selected)
            ZyColourSelection().Select(i);
        const DocSnapshot before = snapshot(doc);
        run(c.id);
        const CTavixImage& result = *doc.GetImageAt(1);
        ASSERT_EQ(result.GetBitCount(), 8);
        EXPECT_EQ(result.GetName(), "deep");
        EXPECT_EQ(indices(result), std::vector<int>(6, c.expected));
        EXPECT_EQ(entry(result, 3), 0xFF848474u) << "carries the focused image's palette";
        expectUndoRestores(before);
    }
}

TEST_F(PaletteTest, RemapNeedsAnIndexedFocusedImage) {
    add(32);
    add(8);
    doc.SetFocus(0, false);
    EXPECT_FALSE(enabled(ID_IMAGE_REMAP_PALETTE));
    EXPECT_FALSE(enabled(ID_IMAGE_REMAP_PALETTE_BETTER));
    doc.SetFocus(1, false);
    EXPECT_TRUE(enabled(ID_IMAGE_REMAP_PALETTE));
}

// ---- Sort -------------------------------------------------------------------------

// Entry i's use count, in the order of the image's palette.
std::vector<uint32_t> usageByIndex(const CTavixImage& image) {
    const auto counts = palette_ops::usage(image);
    return {counts.begin(), counts.end()};
}

TEST_F(PaletteTest, SortKeepsThePictureAndOrdersByTheKeys) {
    struct SortCase {
        unsigned id;
        const char* dialogText;                                              // for 25240
        std::function<bool(uint32_t, uint32_t, uint32_t, uint32_t)> inOrder; // a, b colours, counts
    };
    auto red = [](uint32_t c) { return c >> 16 & 0xFF; };
    const SortCase cases[] = {
        {ID_PALETTE_SORT_LEAST_USED, "",
         [](uint32_t, uint32_t, uint32_t ca, uint32_t cb) { return ca <= cb; }},
        {ID_PALETTE_SORT_MOST_USED, "",
         [](uint32_t, uint32_t, uint32_t ca, uint32_t cb) { return ca >= cb; }},
        {ID_PALETTE_SORT_RGB, "",
         [&](uint32_t a, uint32_t b, uint32_t, uint32_t) { return red(a) <= red(b); }},
        {ID_PALETTE_SORT, "r",
         [&](uint32_t a, uint32_t b, uint32_t, uint32_t) { return red(a) >= red(b); }},
        {ID_PALETTE_SORT, " a G",
         [](uint32_t a, uint32_t b, uint32_t, uint32_t) {
             return (a >> 24) > (b >> 24) ||
                    ((a >> 24) == (b >> 24) && (a >> 8 & 0xFF) <= (b >> 8 & 0xFF));
         }},
    };
    for (const SortCase& c : cases) {
        SCOPED_TRACE(std::to_string(c.id) + " " + c.dialogText);
        doc.DeleteContents();
        add(8, 9, 7);
        const std::string deep0 = imageBytes(*add(32));
        doc.GetSelectionModel().SelectAll();
        const std::vector<uint32_t> picture0 = picture(*doc.GetImageAt(0));
        const DocSnapshot before = snapshot(doc);
        model.ui.dialogs["CSortPalDlg"] = [&](CDialogData& data) {
            static_cast<CSortPalDlgData&>(data).m_SortStr = c.dialogText;
            return true;
        };
        run(c.id);
        const CTavixImage& result = *doc.GetImageAt(0);
        EXPECT_EQ(picture(result), picture0);
        const std::vector<uint32_t> counts = usageByIndex(result);
        for (int i = 0; i + 1 < 256; ++i)
            ASSERT_TRUE(c.inOrder(entry(result, i), entry(result, i + 1), counts[i], counts[i + 1]))
                << "entries " << i << " and " << i + 1;
        EXPECT_EQ(imageBytes(*doc.GetImageAt(1)), deep0);
        expectUndoRestores(before);
    }
    EXPECT_EQ(model.profile.GetString("CSortPalCmd", "m_SortStr", ""), " a G");
}

TEST_F(PaletteTest, PAndLowerPGiveOppositeOrders) {
    TavixColour palette[256];
    std::array<uint32_t, 256> counts{};
    for (int i = 0; i < 256; ++i) {
        palette[i] = palette_ops::colour(0xFF000000u | static_cast<uint32_t>(i));
        counts[static_cast<size_t>(i)] = static_cast<uint32_t>((i * 37) % 256); // all distinct
    }
    const auto up = PaletteSortOrder(palette, counts, palette_ops::allFlags(), 256, "P");
    const auto down = PaletteSortOrder(palette, counts, palette_ops::allFlags(), 256, "p");
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(up[static_cast<size_t>(i)], down[static_cast<size_t>(255 - i)]);
    EXPECT_EQ(counts[up[0]], 0u);
    EXPECT_EQ(counts[down[0]], 255u);
}

TEST_F(PaletteTest, SortWithSelectedColoursMovesOnlyThoseAndPopularityIsDisabled) {
    CTavixImage* image = add(8, 9, 7);
    selectColours({40, 10, 20, 30});
    EXPECT_FALSE(enabled(ID_PALETTE_SORT_LEAST_USED));
    EXPECT_FALSE(enabled(ID_PALETTE_SORT_MOST_USED));
    EXPECT_TRUE(enabled(ID_PALETTE_SORT_RGB));
    TavixColour palette0[256];
    image->GetPalette(palette0);
    const std::vector<uint32_t> picture0 = picture(*image);
    model.ui.dialogs["CSortPalDlg"] = [](CDialogData& data) {
        static_cast<CSortPalDlgData&>(data).m_SortStr = "b"; // blue descending: reverses them
        return true;
    };
    run(ID_PALETTE_SORT);
    const CTavixImage& result = *doc.GetImageAt(0);
    EXPECT_EQ(picture(result), picture0);
    for (int i = 0; i < 256; ++i) {
        const int from = i == 10 ? 40 : i == 20 ? 30 : i == 30 ? 20 : i == 40 ? 10 : i;
        EXPECT_EQ(entry(result, i), argb(palette0[from])) << i;
    }
}

TEST_F(PaletteTest, BadSortStringsAreRefusedWithTheReason) {
    add(8);
    for (const char* text : {"", "HSX", "  "}) {
        model.ui.messages.clear();
        model.ui.dialogs["CSortPalDlg"] = [text](CDialogData& data) {
            static_cast<CSortPalDlgData&>(data).m_SortStr = text;
            return true;
        };
        run(ID_PALETTE_SORT);
        ASSERT_EQ(model.ui.messages.size(), 1u) << text;
        const std::string& shown = model.ui.messages[0].text;
        EXPECT_NE(shown.find(text[0] == 'H' ? "holds 'X'" : "is empty"), std::string::npos)
            << shown;
    }
    EXPECT_EQ(doc.GetCommandHandler().GetSubmitCount(), 0);
}

// ---- Set palette ------------------------------------------------------------------

TEST_F(PaletteTest, SetPaletteCopiesTheListedEntriesFromTheChosenShape) {
    CTavixImage* source = add(8);
    CTavixImage* target = add(8);
    for (int i = 0; i < 256; ++i)
        target->SetPaletteEntry(i, palette_ops::colour(0xFF112233u));
    add(32);
    doc.GetSelectionModel().Select(1);
    doc.GetSelectionModel().Select(2);
    const uint32_t wanted[3] = {entry(*source, 0), entry(*source, 1), entry(*source, 5)};
    const std::vector<int> indices0 = indices(*target);
    const std::string deep0 = imageBytes(*doc.GetImageAt(2));
    const DocSnapshot before = snapshot(doc);
    model.ui.dialogs["CSetPaletteDlg"] = [](CDialogData& data) {
        auto& set = static_cast<CSetPaletteDlgData&>(data);
        set.m_ShapeIndex = 1;
        set.m_AllColors = 0;
        set.m_Colors = "0-1, 5";
        return true;
    };
    run(ID_IMAGE_SET_PALETTE_SELECTED);
    const CTavixImage& result = *doc.GetImageAt(1);
    EXPECT_EQ(entry(result, 0), wanted[0]);
    EXPECT_EQ(entry(result, 1), wanted[1]);
    EXPECT_EQ(entry(result, 5), wanted[2]);
    EXPECT_EQ(entry(result, 2), 0xFF112233u);
    EXPECT_EQ(indices(result), indices0);
    EXPECT_EQ(imageBytes(*doc.GetImageAt(2)), deep0);
    EXPECT_EQ(model.profile.GetString("CSetPaletteCmd", "m_Colors", ""), "0-1, 5");
    expectUndoRestores(before);

    // Attach stores the palette in the true-colour record as well.
    model.ui.dialogs["CSetPaletteDlg"] = [](CDialogData& data) {
        static_cast<CSetPaletteDlgData&>(data).m_ShapeIndex = 1;
        static_cast<CSetPaletteDlgData&>(data).m_AllColors = 1;
        return true;
    };
    run(ID_IMAGE_ATTACH_PALETTE);
    EXPECT_EQ(entry(*doc.GetImageAt(2), 200), entry(*source, 200));
}

TEST_F(PaletteTest, SetPaletteRefusesADeepSourceAndBadListsKeepingTheDialogOpen) {
    add(32);
    add(8);
    add(8);
    struct Attempt {
        int shape;
        const char* colours;
        const char* message; // empty: accepted
    };
    const Attempt attempts[] = {
        {1, "", "Image to get palette from must be 8 bpp or less"},
        {2, "3-300", "Colors to set: palette index 300 is above 255."},
        {2, "3,,", "Colors to set: ',' is not a palette index."},
        {2, "4", ""},
    };
    size_t next = 0;
    model.ui.dialogs["CSetPaletteDlg"] = [&](CDialogData& data) {
        auto& set = static_cast<CSetPaletteDlgData&>(data);
        set.m_ShapeIndex = attempts[next].shape;
        set.m_AllColors = 0;
        set.m_Colors = attempts[next].colours;
        ++next;
        return true;
    };
    run(ID_IMAGE_SET_PALETTE_ALL);
    ASSERT_EQ(next, 4u);
    ASSERT_EQ(model.ui.messages.size(), 3u);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(model.ui.messages[i].text, attempts[i].message);
    EXPECT_EQ(entry(*doc.GetImageAt(2), 4), entry(*doc.GetImageAt(1), 4)) << "all images set";

    // The same refused values again end the command instead of asking for ever.
    model.ui.dialogs["CSetPaletteDlg"] = [](CDialogData& data) {
        static_cast<CSetPaletteDlgData&>(data).m_ShapeIndex = 1;
        return true;
    };
    const int submitted = doc.GetCommandHandler().GetSubmitCount();
    run(ID_IMAGE_SET_PALETTE_SELECTED);
    EXPECT_EQ(doc.GetCommandHandler().GetSubmitCount(), submitted);
}

// ---- Named palette ----------------------------------------------------------------

TEST_F(PaletteTest, NamedPaletteNeedsOneSharedPalette) {
    add(8);
    add(8);
    add(32);
    struct Case {
        std::vector<int> selected;
        bool inserted;
    };
    const Case cases[] = {{{0, 1}, true}, {{0, 2}, false}, {{1}, true}};
    doc.GetImageAt(1)->SetPaletteEntry(255, palette_ops::colour(0x12345678u));
    const Case differing = {{0, 1}, false};
    for (const Case& c : {cases[1], differing, cases[2]}) {
        model.ui.messages.clear();
        doc.GetSelectionModel().SelectAll(false);
        for (int i : c.selected)
            doc.GetSelectionModel().Select(i);
        const int count = doc.GetImageCount();
        run(ID_IMAGE_NAMED_PALETTE);
        EXPECT_EQ(doc.GetImageCount(), count + (c.inserted ? 1 : 0));
        if (!c.inserted) {
            ASSERT_EQ(model.ui.messages.size(), 1u);
            EXPECT_EQ(model.ui.messages[0].text,
                      "Cannot insert named palette if palettes of selected images are not the "
                      "same or all images are not palette based.");
        }
    }
    const CTavixImage& pal = *doc.GetImageAt(doc.GetImageCount() - 1);
    EXPECT_EQ(pal.GetName(), "!pal");
    EXPECT_EQ(pal.GetBitCount(), 8);
    EXPECT_EQ(pal.GetIndex(3, 2), 35);
    EXPECT_EQ(entry(pal, 255), 0x12345678u);
    EXPECT_EQ(pal.GetPixelValue(15, 15), 0x12345678u);
}

// ---- The colour selection ---------------------------------------------------------

TEST(ColourSelection, ListsParseAndPrintAsRanges) {
    struct Case {
        const char* text;
        bool ok;
        const char* printed;
    };
    const Case cases[] = {
        {"", true, ""},           {"3", true, "3"},   {"5-3, 9 10", true, "3-5,9-10"},
        {"0-255", true, "0-255"}, {"256", false, ""}, {"1-", false, ""},
        {"a", false, ""},         {"4,", false, ""}};
    for (const Case& c : cases) {
        CColourSelection selection;
        EXPECT_EQ(selection.FromText(c.text), c.ok) << c.text;
        EXPECT_EQ(selection.ToText(), c.printed) << c.text;
    }
    CColourSelection selection;
    int notified = 0;
    const int id = selection.AddListener([&] { ++notified; });
    selection.SelectRange(9, 4);
    selection.Toggle(5);
    EXPECT_EQ(selection.GetCount(), 5);
    EXPECT_EQ(selection.ToText(), "4,6-9");
    selection.RemoveListener(id);
    selection.Clear();
    EXPECT_EQ(notified, 2);
}

} // namespace
