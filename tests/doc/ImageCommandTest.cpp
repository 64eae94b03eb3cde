// The geometry, size and adjustment families through the document's menu
// route with the scripted interface and the real module table: the values
// each item passes, the attribute bits, the dialogs' rules and undo.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "CodecTestSupport.h"
#include "app/cmds/AdjustCmds.h"
#include "app/cmds/GeometryCmds.h"
#include "app/cmds/SizeCmds.h"
#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/doc/TavixDoc.h"
#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace zytest;

namespace {

class ImageCmdTest : public ::testing::Test {
  protected:
    void SetUp() override {
        bindBuiltLibrary();
        live = galloc_live_count();
    }
    void TearDown() override { EXPECT_EQ(galloc_live_count(), live); }

    // Opens `frames` written as a tvx file (a format that keeps the
    // attribute bits) and selects every image.
    void open(const std::vector<TavixFrame>& frames) {
        std::vector<const TavixFrame*> pointers;
        for (const TavixFrame& frame : frames)
            pointers.push_back(&frame);
        const std::string path = (folder / "images.tvx").string();
        writeTvx(path, pointers);
        ASSERT_TRUE(doc.OnOpenDocument(path));
        model.ui = ScriptedUi();
        doc.GetSelectionModel().SelectAll();
        doc.SetFocus(0, false);
    }
    void openMixed(int count) {
        std::vector<TavixFrame> frames;
        for (int i = 0; i < count; ++i)
            frames.push_back(makeFrame(5 + i, 3 + i, i % 2 ? 32 : 8));
        open(frames);
    }
    template <typename Cmd> Cmd* current() {
        return dynamic_cast<Cmd*>(doc.GetCommandHandler().GetCurrent());
    }
    int submits() { return doc.GetCommandHandler().GetSubmitCount(); }
    CTavixImage& image(int i) { return *doc.GetImageAt(i); }
    std::string undoText() {
        CCmdUI ui(ID_EDIT_UNDO);
        doc.OnUpdateCmdUI(&ui);
        return (ui.m_bEnabled ? "on " : "off ") + ui.m_strText;
    }

    ScopedModel model;
    TempFolder folder;
    CTavixDoc doc;
    int live = 0;
};

// ---- Rotations -------------------------------------------------------------

TEST_F(ImageCmdTest, RotateToggleTwiceRestoresTheBitAndThePixels) {
    openMixed(2);
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ZyIds::RotateToggle);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(image(i).GetInfo()->attributes & kAttrRotated, kAttrRotated);
        EXPECT_EQ(image(i).GetInfo()->width, 3 + i) << "turned a quarter";
    }
    doc.OnCmdMsg(ZyIds::RotateToggle);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
}

TEST_F(ImageCmdTest, RotateToggleOnAFormatWithoutTheBitIsAPlainTurn) {
    openMixed(1);
    doc.SetFileType(TavixFind("png"));
    doc.OnCmdMsg(ZyIds::RotateToggle);
    EXPECT_EQ(image(0).GetInfo()->attributes & kAttrRotated, 0u);
    doc.OnCmdMsg(ZyIds::RotateToggle);
    EXPECT_EQ(image(0).GetInfo()->width, 5) << "two clockwise turns: 180 degrees";
    EXPECT_EQ(image(0).GetInfo()->attributes & kAttrRotated, 0u);
}

struct TurnCase {
    unsigned id;
    int code; // the "rot" code whose result the item must match
};

TEST_F(ImageCmdTest, QuarterTurnsRunRotAndKeepTheWorksheetPosition) {
    const TurnCase cases[] = {
        {ZyIds::Rotate90CW, 1}, {ZyIds::Rotate180, 2}, {ZyIds::Rotate90CCW, 3}};
    for (const TurnCase& c : cases) {
        openMixed(2);
        image(1).SetDefaultPoint({40, 9});
        std::vector<std::string> expected;
        for (int i = 0; i < 2; ++i) {
            const ModuleValue code = ModuleValue::ofInt(c.code);
            auto turned = image(i).RunModule(module_find("rot"), &code, 1);
            turned->SetDefaultPoint(image(i).GetDefaultPoint());
            expected.push_back(imageBytes(*turned));
        }
        doc.OnCmdMsg(c.id);
        EXPECT_EQ(snapshot(doc).contents, expected) << c.id;
        EXPECT_EQ(image(1).GetDefaultPoint(), CPoint(40, 9)) << c.id;
        EXPECT_TRUE(model.ui.progress.empty()) << "quarter turns show no progress window";
    }
}

TEST_F(ImageCmdTest, TransposeInvertsItsBitAndTurnsThenMirrors) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(3, 2, 32));
    open(frames);
    const CTavixImage& before = *snapshot(doc).objects[0];
    std::vector<uint32_t> source;
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            source.push_back(before.GetPixelValue(x, y));
    doc.OnCmdMsg(ZyIds::Transpose);
    ASSERT_EQ(image(0).GetInfo()->width, 2);
    // Transposed: (x, y) of the result is (y, x) of the source.
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 2; ++x)
            EXPECT_EQ(image(0).GetPixelValue(x, y), source[static_cast<size_t>(x * 3 + y)]);
    EXPECT_EQ(image(0).GetInfo()->attributes & kAttrTransposed, kAttrTransposed);
    doc.OnCmdMsg(ZyIds::Transpose);
    EXPECT_EQ(image(0).GetInfo()->attributes & kAttrTransposed, 0u);
}

TEST_F(ImageCmdTest, ArbitraryRotationOf90ClockwisePassesMinusHalfPi) {
    openMixed(1);
    model.ui.dialogs["CRotateArbitraryDlg"] = [](CDialogData& data) {
        auto& d = static_cast<CRotateArbitraryDlgData&>(data);
        d.m_Angle = 90;
        d.m_ClockWise = 1;
        return true;
    };
    doc.OnCmdMsg(ZyIds::ArbitraryRotate);
    auto* cmd = current<CRotateArbitraryCmd>();
    ASSERT_NE(cmd, nullptr);
    EXPECT_EQ(cmd->GetRadians(), -(90 * 0.017453292522222223));
    EXPECT_NEAR(cmd->GetRadians(), -1.5707963270, 1e-10);
    EXPECT_EQ(model.profile.GetString("CRotateArbitraryCmd", "m_AngleString", ""), "90.000000");
    EXPECT_EQ(model.profile.GetInt("CRotateArbitraryCmd", "m_ClockWise", -1), 1);
}

TEST_F(ImageCmdTest, ArbitraryRotationFillsWithCurrentColourFour) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(4, 4, 32));
    frames.push_back(makeFrame(4, 4, 8));
    open(frames);
    model.ui.colours[4] = {7, 0xFF00FF00};
    model.ui.dialogs["CRotateArbitraryDlg"] = [](CDialogData& data) {
        static_cast<CRotateArbitraryDlgData&>(data).m_Angle = 45;
        static_cast<CRotateArbitraryDlgData&>(data).m_Interplolate = 0;
        return true;
    };
    doc.OnCmdMsg(ZyIds::ArbitraryRotate);
    EXPECT_EQ(image(0).GetPixelValue(0, 0), 0xFF00FF00u) << "a corner the turn does not cover";
    EXPECT_EQ(image(1).GetIndex(0, 0), 7);
}

// ---- Column swap -----------------------------------------------------------

TEST_F(ImageCmdTest, ColumnSwapSwapsPairsOfIndexedColumnsOnly) {
    std::vector<TavixFrame> frames;
    frames.push_back(makeFrame(3, 2, 8));
    frames.push_back(makeFrame(3, 2, 32));
    open(frames);
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ZyIds::ColumnSwap);
    const CTavixImage& old = *before.objects[0];
    for (int y = 0; y < 2; ++y) {
        EXPECT_EQ(image(0).GetIndex(0, y), old.GetIndex(1, y));
        EXPECT_EQ(image(0).GetIndex(1, y), old.GetIndex(0, y));
        EXPECT_EQ(image(0).GetIndex(2, y), old.GetIndex(2, y)) << "the odd last column stays";
    }
    EXPECT_EQ(imageBytes(image(1)), before.contents[1]) << "32-bit images are left alone";
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
}

// ---- Resize ----------------------------------------------------------------

struct SizeCase {
    int operation, widthUnit, heightUnit, constraint;
    double width, height;
    int expectW, expectH;
};

TEST(ImageSizeRule, NewSizeFollowsOperationUnitsAndConstraint) {
    using D = CImageSizeDlgData;
    const SizeCase cases[] = {
        {D::Absolute, D::Percent, D::Percent, D::NoConstraint, 0, 0, 1, 1},
        {D::Absolute, D::Percent, D::Percent, D::NoConstraint, 50, 200, 50, 160},
        {D::Absolute, D::Pixels, D::Pixels, D::NoConstraint, 7.9, 3, 7, 3},
        {D::Relative, D::Percent, D::Pixels, D::NoConstraint, -50, 10, 50, 90},
        {D::Relative, D::Pixels, D::Percent, D::NoConstraint, -99, -100, 1, 1},
        {D::Absolute, D::Pixels, D::Pixels, D::CalculateWidth, 1, 40, 50, 40},
        {D::Absolute, D::Pixels, D::Pixels, D::CalculateHeight, 25, 1, 25, 20},
        {D::Absolute, D::Percent, D::Percent, D::CalculateHeight, 10, 500, 10, 8},
    };
    for (const SizeCase& c : cases) {
        D s;
        s.m_Operation = c.operation;
        s.m_WidthUnit = c.widthUnit;
        s.m_HeightUnit = c.heightUnit;
        s.m_Constraint = c.constraint;
        s.m_Width = c.width;
        s.m_Height = c.height;
        int w = 0, h = 0;
        CImageSizeCmd::NewSize(s, 100, 80, w, h);
        EXPECT_EQ(w, c.expectW) << c.width << " " << c.height;
        EXPECT_EQ(h, c.expectH) << c.width << " " << c.height;
    }
}

TEST(ImageSizeRule, UnitAndOperationChangesConvertTheValues) {
    CImageSizeDlgData d;
    d.m_CurrentWidth = 200;
    d.m_CurrentHeight = 50;
    d.m_Width = 150; // percent
    d.SetWidthUnit(CImageSizeDlgData::Pixels);
    EXPECT_EQ(d.m_Width, 300);
    d.SetWidthUnit(CImageSizeDlgData::Percent);
    EXPECT_EQ(d.m_Width, 150);
    d.m_Height = 100;
    d.SetOperation(CImageSizeDlgData::Relative);
    EXPECT_EQ(d.m_Width, 50) << "percent: less 100";
    d.SetHeightUnit(CImageSizeDlgData::Pixels); // 0 % more is 0 pixels more
    EXPECT_EQ(d.m_Height, 0);
    d.SetOperation(CImageSizeDlgData::Absolute);
    EXPECT_EQ(d.m_Height, 50) << "pixels: plus the current size";
    EXPECT_EQ(d.Minimum(CImageSizeDlgData::Pixels, 50), 1);
    d.SetOperation(CImageSizeDlgData::Relative);
    EXPECT_EQ(d.Minimum(CImageSizeDlgData::Pixels, 50), -49);
    EXPECT_EQ(d.Minimum(CImageSizeDlgData::Percent, 50), -99);
}

TEST_F(ImageCmdTest, ResizeToOnePercentOfASmallImageGivesOneByOne) {
    openMixed(2);
    model.ui.dialogs["CImageSizeDlg"] = [](CDialogData& data) {
        auto& d = static_cast<CImageSizeDlgData&>(data);
        d.m_Operation = CImageSizeDlgData::Absolute;
        d.m_WidthUnit = d.m_HeightUnit = CImageSizeDlgData::Percent;
        d.m_Width = d.m_Height = 1;
        d.m_Filter = 0;
        return true;
    };
    doc.OnCmdMsg(ZyIds::ImageSize);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(image(i).GetSize(), CSize(1, 1));
    EXPECT_EQ(undoText(), "on Undo Resize\tCtrl+Z");
}

TEST_F(ImageCmdTest, ResizeWithAFilterAsksAboutPaletteImagesAndCancelKeepsEverything) {
    openMixed(2); // an 8-bit and a 32-bit image
    model.ui.dialogs["CImageSizeDlg"] = [](CDialogData& data) {
        auto& d = static_cast<CImageSizeDlgData&>(data);
        d.m_Operation = CImageSizeDlgData::Absolute;
        d.m_WidthUnit = d.m_HeightUnit = CImageSizeDlgData::Percent;
        d.m_Width = d.m_Height = 200;
        d.m_Filter = 4; // Linear
        return true;
    };
    const DocSnapshot before = snapshot(doc);
    model.ui.answers.push_back(MsgAnswer::Cancel);
    doc.OnCmdMsg(ZyIds::ImageSize);
    ASSERT_EQ(model.ui.messages.size(), 1u);
    EXPECT_EQ(model.ui.messages[0].text,
              "Interpolation can only be performed on images without palettes.\nTurn off "
              "interpolation for palette based images?");
    EXPECT_EQ(snapshot(doc).contents, before.contents);
    EXPECT_EQ(submits(), 0);

    doc.OnCmdMsg(ZyIds::ImageSize); // OK this time: both double in size
    EXPECT_EQ(image(0).GetSize(), CSize(10, 6));
    EXPECT_EQ(image(1).GetSize(), CSize(12, 8));
}

// ---- Canvas ----------------------------------------------------------------

struct EnlargeCase {
    double width, height;
    int units;
    bool accepted;
};

TEST_F(ImageCmdTest, EnlargeCanvasAcceptsOnlyValuesThatDoNotShrink) {
    const EnlargeCase cases[] = {
        {100, 100, CEnlargeCanvasDlgData::Percent, true},
        {99, 100, CEnlargeCanvasDlgData::Percent, false},
        {0, 0, CEnlargeCanvasDlgData::AddPixels, true},
        {119, 90, CEnlargeCanvasDlgData::Absolute, false},
    };
    for (const EnlargeCase& c : cases) {
        // Large enough for 99 % to round below the current size.
        std::vector<TavixFrame> frames;
        frames.push_back(makeFrame(120, 80, 32));
        open(frames);
        model.ui.dialogs["CEnlargeCanvasDlg"] = [c](CDialogData& data) {
            auto& d = static_cast<CEnlargeCanvasDlgData&>(data);
            EXPECT_EQ(d.CurrentSizeText(), "Current size: 120 x 80 pixels");
            d.m_Width = c.width;
            d.m_Height = c.height;
            d.m_Units = c.units;
            return true;
        };
        const int before = submits();
        doc.OnCmdMsg(ZyIds::EnlargeCanvas);
        EXPECT_EQ(submits() - before, c.accepted ? 1 : 0) << c.width;
        if (c.accepted) {
            EXPECT_TRUE(model.ui.messages.empty());
            EXPECT_EQ(image(0).GetSize(), CSize(120, 80));
        } else {
            ASSERT_EQ(model.ui.messages.size(), 1u) << c.width;
            EXPECT_EQ(model.ui.messages[0].text,
                      "Your input values cannot be used, because they will shrink the image "
                      "canvas instead of expand it.");
        }
    }
}

struct AnchorCase {
    int anchor;
    CPoint placed; // where the enlarged canvas starts, image at (10, 20)
};

TEST_F(ImageCmdTest, EnlargeCanvasAnchorsTheOldPicture) {
    // 5 x 3 grown to 10 x 8: 5 more across, 5 more down.
    const AnchorCase cases[] = {{0, {10, 20}}, {4, {8, 18}}, {5, {5, 18}}, {8, {5, 15}}};
    for (const AnchorCase& c : cases) {
        openMixed(1);
        image(0).SetDefaultPoint({10, 20});
        const uint32_t corner = image(0).GetPixelValue(0, 0);
        model.ui.dialogs["CEnlargeCanvasDlg"] = [c](CDialogData& data) {
            auto& d = static_cast<CEnlargeCanvasDlgData&>(data);
            d.m_Units = CEnlargeCanvasDlgData::Absolute;
            d.m_Width = 10;
            d.m_Height = 8;
            d.m_Anchor = c.anchor;
            return true;
        };
        doc.OnCmdMsg(ZyIds::EnlargeCanvas);
        ASSERT_EQ(image(0).GetSize(), CSize(10, 8));
        EXPECT_EQ(image(0).GetDefaultPoint(), c.placed) << c.anchor;
        // The old picture keeps its place on the worksheet.
        EXPECT_EQ(image(0).GetPixelValue(10 - c.placed.x, 20 - c.placed.y), corner) << c.anchor;
    }
}

TEST_F(ImageCmdTest, CanvasInWorksheetCoordinatesPlacesTheResultAtTheRectangle) {
    openMixed(1);
    image(0).SetDefaultPoint({100, 50});
    const uint32_t kept = image(0).GetPixelValue(2, 1);
    model.ui.dialogs["CCanvasSizeDlg"] = [](CDialogData& data) {
        auto& d = static_cast<CCanvasSizeDlgData&>(data);
        EXPECT_EQ(d.m_Bottom, 3);
        EXPECT_EQ(d.m_Right, 5);
        d.m_Coordinates = 1;
        d.m_Left = 101;
        d.m_Top = 50;
        d.m_Right = 104;
        d.m_Bottom = 52;
        return true;
    };
    doc.OnCmdMsg(ZyIds::CanvasSize);
    EXPECT_EQ(image(0).GetSize(), CSize(3, 2));
    EXPECT_EQ(image(0).GetDefaultPoint(), CPoint(101, 50));
    EXPECT_EQ(image(0).GetPixelValue(1, 1), kept);
}

// ---- Adjustments -----------------------------------------------------------

struct AmountCase {
    unsigned id;
    const char* module;
    double amount;
};

TEST_F(ImageCmdTest, BlurAndSharpenItemsPassTheirFixedAmounts) {
    const AmountCase cases[] = {{ZyIds::Blur, "blur", 1.5},
                                {ZyIds::BlurMore, "blur", 3.0},
                                {ZyIds::Sharpen, "sharpen", 8.0},
                                {ZyIds::SharpenMore, "sharpen", 5.0}};
    for (const AmountCase& c : cases) {
        openMixed(2);
        std::vector<std::string> expected;
        const ModuleValue amount = ModuleValue::ofReal(c.amount);
        for (int i = 0; i < 2; ++i)
            expected.push_back(imageBytes(*image(i).RunModule(module_find(c.module), &amount, 1)));
        doc.OnCmdMsg(c.id);
        auto* cmd = current<CAmountCmd>();
        ASSERT_NE(cmd, nullptr) << c.id;
        EXPECT_EQ(cmd->GetAmount(), c.amount);
        EXPECT_EQ(snapshot(doc).contents, expected) << c.id;
        EXPECT_TRUE(model.ui.dialogsShown.empty()) << "the fixed items ask nothing";
    }
}

TEST_F(ImageCmdTest, InvertOverAHundredImagesShowsNoProgressWindow) {
    std::vector<TavixFrame> frames;
    for (int i = 0; i < 100; ++i)
        frames.push_back(makeFrame(4, 2, 32));
    open(frames);
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(ZyIds::Invert);
    EXPECT_TRUE(model.ui.progress.empty());
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(image(i).GetPixelValue(1, 1) ^ before.objects[i]->GetPixelValue(1, 1),
                  0x00FFFFFFu);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(snapshot(doc).contents, before.contents);
}

TEST_F(ImageCmdTest, ColorBalanceFromTheMenuChangesNothing) {
    openMixed(2);
    doc.OnCmdMsg(ZyIds::Invert);
    const DocSnapshot before = snapshot(doc);
    const std::string undo = undoText();
    CCmdUI item(ZyIds::ColorBalance);
    doc.OnUpdateCmdUI(&item);
    EXPECT_TRUE(item.m_bEnabled);
    doc.OnCmdMsg(ZyIds::ColorBalance);
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(undoText(), undo);
}

// Each command, then Undo: the very image objects come back; Redo gives
// the filtered ones again.
struct UndoCase {
    unsigned id;
    const char* name;
};

TEST_F(ImageCmdTest, EveryCommandUndoesExactly) {
    const UndoCase cases[] = {
        {ZyIds::Rotate90CW, "Rotate"},
        {ZyIds::RotateToggle, "Rotate"},
        {ZyIds::Transpose, "Transpose"},
        {ZyIds::ColumnSwap, "Column Swap"},
        {ZyIds::DeInterlace, "De-Interlace"},
        {ZyIds::ArbitraryRotate, "Arbitrary Rotate"},
        {ZyIds::ImageSize, "Resize"},
        {ZyIds::CanvasSize, "Crop"},
        {ZyIds::ShrinkToFit, "Crop"},
        {ZyIds::EnlargeCanvas, "Crop"},
        {ZyIds::BlurAmount, "Blur"},
        {ZyIds::SharpenAmount, "Sharpen"},
        {ZyIds::ContrastBrightness, "Contrast/Brightness"},
        {ZyIds::HueSaturation, "Hue/Saturation"},
        {ZyIds::Grayscale, "Grey Scale"},
        {ZyIds::Invert, "Invert"},
        {ZyIds::PreAttenuate, "Attenuation"},
        {ZyIds::UnAttenuate, "Attenuation"},
        {ZyIds::Creep, "Creep"},
        {ZyIds::CleanEdges, "Clean Edges"},
        {ZyIds::Outline, "Outline"},
    };
    for (const UndoCase& c : cases) {
        openMixed(3);
        const DocSnapshot before = snapshot(doc);
        doc.OnCmdMsg(c.id);
        EXPECT_EQ(undoText(), std::string("on Undo ") + c.name + "\tCtrl+Z") << c.id;
        const DocSnapshot after = snapshot(doc);
        doc.OnCmdMsg(ID_EDIT_UNDO);
        EXPECT_EQ(snapshot(doc).objects, before.objects) << c.id;
        EXPECT_EQ(snapshot(doc).contents, before.contents) << c.id;
        doc.OnCmdMsg(ID_EDIT_UNDO);
        EXPECT_EQ(snapshot(doc).objects, after.objects) << c.id;
    }
}

TEST_F(ImageCmdTest, ItemsNeedImagesExceptColumnSwap) {
    CTavixDoc empty;
    const unsigned ids[] = {ZyIds::Rotate90CW, ZyIds::ImageSize,     ZyIds::Blur,
                            ZyIds::Outline,    ZyIds::EnlargeCanvas, ZyIds::Invert};
    for (unsigned id : ids) {
        CCmdUI item(id);
        empty.OnUpdateCmdUI(&item);
        EXPECT_FALSE(item.m_bEnabled) << id;
    }
    CCmdUI swap(ZyIds::ColumnSwap);
    empty.OnUpdateCmdUI(&swap);
    EXPECT_TRUE(swap.m_bEnabled);
}

TEST_F(ImageCmdTest, OutlineColoursTheDirectNeighboursOfTheContent) {
    TavixFrame frame = makeFrame(5, 5, 32);
    std::fill(frame.pixels.begin(), frame.pixels.end(), 0); // all transparent
    const uint32_t red = 0xFFFF0000;
    memcpy(frame.pixels.data() + 2 * frame.pitch + 2 * 4, &red, 4);
    std::vector<TavixFrame> frames;
    frames.push_back(std::move(frame));
    open(frames);
    model.ui.colours[0] = {3, 0xFF0000FF};
    doc.OnCmdMsg(ZyIds::Outline);
    std::string picture;
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) {
            const uint32_t v = image(0).GetPixelValue(x, y);
            picture += v == red ? 'R' : v == 0xFF0000FF ? 'o' : '.';
        }
    EXPECT_EQ(picture, "....."
                       "..o.."
                       ".oRo."
                       "..o.."
                       ".....");
}

} // namespace
