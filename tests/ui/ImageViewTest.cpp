// The worksheet view: zoom bounds and panes, what it paints through its own
// settings and commands, which settings it reads and writes under which
// keys, and what an update hint repaints.

#include "UiTestSupport.h"

#include "app/doc/Hints.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollBar>

using namespace uitest;
using namespace ZyIds;

namespace {

class ImageViewTest : public ::testing::Test {
  protected:
    // A document with a red 8x8 image at (0,0), selected and focused, and a
    // green one at (4,4) on the worksheet but not selected.
    void Open() {
        m_View.reset();
        m_Doc = std::make_unique<CTavixDoc>();
        auto red = MakeImage(8, 8, 32, "red", 0xFFFF0000);
        auto green = MakeImage(8, 8, 32, "green", 0xFF00FF00);
        green->SetDefaultPoint({4, 4});
        green->m_OnWorksheet = 1;
        m_Doc->InsertImage(0, red.release());
        m_Doc->InsertImage(1, green.release());
        m_Doc->GetSelectionModel().Select(0);
        m_Doc->SetFocus(0, false);
        m_View = std::make_unique<CImageView>(m_Doc.get());
    }
    uint32_t Pixel(int x, int y) { return m_View->RenderArea(QRect(x, y, 1, 1)).pixel(0, 0); }
    CUiCmdUI Update(unsigned id) {
        CUiCmdUI ui(id);
        EXPECT_TRUE(m_View->OnUpdateCmdUI(ui)) << id;
        return ui;
    }

    TempProfile m_Profile;
    ScriptedUi m_Ui;
    std::unique_ptr<CTavixDoc> m_Doc;
    std::unique_ptr<CImageView> m_View;
};

TEST(ZoomPane, ShowsTheRatio) {
    struct Case {
        double zoom;
        const char* text;
    } cases[] = {{1.0, "1:1"}, {0.5, "1:2"}, {4.0, "4:1"}, {1.0 / 16, "1:16"}, {16.0, "16:1"}};
    for (const Case& c : cases)
        EXPECT_EQ(ZoomPaneText(c.zoom), c.text) << c.zoom;
}

TEST_F(ImageViewTest, ZoomStaysWithinASixteenthAndSixteen) {
    m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    Open();
    const double in[] = {2, 4, 8, 16, 16};
    for (double expected : in) {
        m_View->OnCmdMsg(ViewZoomIn);
        EXPECT_EQ(m_View->GetZoom(), expected);
    }
    EXPECT_EQ(m_View->ZoomPaneText(), "16:1");
    EXPECT_FALSE(m_View->SetZoom(32.0));
    EXPECT_TRUE(m_View->SetZoom(1.0)); // from 16 a smaller zoom is allowed
    const double out[] = {0.5, 0.25, 0.125, 1.0 / 16, 1.0 / 16};
    for (double expected : out) {
        m_View->OnCmdMsg(ViewZoomOut);
        EXPECT_EQ(m_View->GetZoom(), expected);
    }
    EXPECT_EQ(m_View->ZoomPaneText(), "1:16");
    EXPECT_FALSE(m_View->SetZoom(1.0 / 16)); // the current value, at the bound
    m_View->OnCmdMsg(ViewZoomNormal);
    EXPECT_EQ(m_View->GetZoom(), 1.0);
    EXPECT_TRUE(m_View->SetZoom(1.0)); // the current value, above the bound
}

TEST_F(ImageViewTest, ZoomingAndNormalSizeKeepTheFocusedImageInView) {
    m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    Open();
    m_View->resize(200, 150);
    m_View->show();
    QApplication::processEvents();
    auto focusedInView = [&](int left, int top, int size) {
        const double z = m_View->GetZoom();
        const QRect image(static_cast<int>(left * z), static_cast<int>(top * z),
                          static_cast<int>(size * z), static_cast<int>(size * z));
        const QRect visible(
            QPoint(m_View->horizontalScrollBar()->value(), m_View->verticalScrollBar()->value()),
            m_View->viewport()->size());
        return visible.contains(image);
    };
    // The red image at (0, 0): zooming about the view's centre would push it out.
    for (int step = 0; step < 4; ++step) {
        m_View->OnCmdMsg(ViewZoomIn);
        EXPECT_TRUE(focusedInView(0, 0, 8)) << "zoom " << m_View->GetZoom();
    }
    for (int step = 0; step < 6; ++step) {
        m_View->OnCmdMsg(ViewZoomOut);
        EXPECT_TRUE(focusedInView(0, 0, 8)) << "zoom " << m_View->GetZoom();
    }
    // The green one at (4, 4), the view scrolled far away: Normal Size brings it back.
    m_Doc->SetFocus(1, false);
    m_View->OnCmdMsg(ViewZoomIn);
    m_View->OnCmdMsg(ViewZoomIn);
    m_View->horizontalScrollBar()->setValue(m_View->horizontalScrollBar()->maximum());
    m_View->verticalScrollBar()->setValue(m_View->verticalScrollBar()->maximum());
    m_View->OnCmdMsg(ViewZoomNormal);
    EXPECT_EQ(m_View->GetZoom(), 1.0);
    EXPECT_TRUE(focusedInView(4, 4, 8));
}

TEST_F(ImageViewTest, ZoomDoesNothingWithoutImagesAndAnimatesWhenAsked) {
    m_Doc = std::make_unique<CTavixDoc>();
    m_View = std::make_unique<CImageView>(m_Doc.get());
    EXPECT_FALSE(Update(ViewZoomIn).m_bEnabled);
    m_View->ZoomIn();
    EXPECT_EQ(m_View->GetZoom(), 1.0);

    // A view plays the animation when it first appears, and again for a
    // zoom set to its current value.
    m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 1);
    m_View->resize(200, 150);
    m_View->show();
    QApplication::processEvents();
    EXPECT_EQ(m_View->ZoomAnimationCount(), 1);
    EXPECT_TRUE(m_View->SetZoom(1.0));
    EXPECT_EQ(m_View->ZoomAnimationCount(), 2);
    m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    EXPECT_TRUE(m_View->SetZoom(1.0));
    EXPECT_EQ(m_View->ZoomAnimationCount(), 2);
}

TEST_F(ImageViewTest, PaintsTheFocusedImageOverTheCheckerboard) {
    Open();
    const CImageViewSettings& s = m_View->Settings();
    EXPECT_EQ(Pixel(1, 1), CompositePixel(s.m_CheckerColor2, 0xFFFF0000, 0xFFFFFFFF));
    EXPECT_EQ(Pixel(12, 12), s.m_CheckerColor2); // the green image is not selected
    EXPECT_EQ(Pixel(16, 0), s.m_CheckerColor1);
    m_View->SetZoom(0.25); // cells of 4 view pixels
    EXPECT_EQ(Pixel(4, 0) | 0xFF000000, s.m_CheckerColor1);
    EXPECT_EQ(Pixel(8, 0) | 0xFF000000, s.m_CheckerColor2);
}

TEST_F(ImageViewTest, ChannelCommandsChangeWhatIsPaintedAndTheirChecks) {
    Open();
    struct Step {
        unsigned command;
        uint32_t pixel;
        bool alpha, rgb, red;
    } steps[] = {
        {ViewAlpha, 0xFFFF0000, false, true, true},  // RGB only: opaque
        {ViewRed, 0xFF000000, false, true, false},   // green and blue only
        {ViewRGB, 0xFF000000, false, false, false},  // RGB had bits: all cleared
        {ViewAlpha, 0xFFFFFFFF, true, false, false}, // alpha as grey
        {ViewRGB, 0xFEFE0000, true, true, true},     // everything, blended
    };
    for (const Step& step : steps) {
        m_View->OnCmdMsg(step.command);
        EXPECT_EQ(Pixel(1, 1), step.pixel) << step.command;
        EXPECT_EQ(Update(ViewAlpha).m_bChecked, step.alpha);
        EXPECT_EQ(Update(ViewRGB).m_bChecked, step.rgb);
        EXPECT_EQ(Update(ViewRed).m_bChecked, step.red);
    }
    // Write toggles change the write mask only.
    m_View->OnCmdMsg(WriteAlpha);
    EXPECT_EQ(m_View->Settings().m_ChannelWriteMask, 0xFFFFFFFFu);
    EXPECT_EQ(m_View->Settings().m_ChannelViewMask, 0xFFFFFFFFu);
}

TEST_F(ImageViewTest, ToggleCommandsAndTheirChecks) {
    Open();
    m_View->OnCmdMsg(OverlapWarning);
    EXPECT_TRUE(Update(OverlapWarning).m_bChecked);
    const uint32_t red = CompositePixel(m_View->Settings().m_CheckerColor2, 0xFFFF0000, 0xFFFFFFFF);
    EXPECT_EQ(Pixel(6, 6), CompositePixel(red, kOverlapWarningColour, 0xFFFFFFFF));
    EXPECT_EQ(Pixel(2, 2), red);

    m_View->OnCmdMsg(VramView);
    EXPECT_TRUE(Update(VramView).m_bChecked);
    EXPECT_EQ(Pixel(1030, 5), kVramOutsideColour);

    for (unsigned id : {ViewGrid, ViewPoints, ViewSelectionEdges}) {
        EXPECT_FALSE(Update(id).m_bChecked) << id;
        m_View->OnCmdMsg(id);
        EXPECT_TRUE(Update(id).m_bChecked) << id;
    }
    m_View->OnCmdMsg(ShowFocusedImage);
    EXPECT_FALSE(m_View->Settings().m_IsActiveVisible);
    m_View->OnCmdMsg(FocusedImageTopmost);
    EXPECT_FALSE(m_View->Settings().m_IsActiveTopMost);
}

TEST_F(ImageViewTest, GridLinesAreTwentyPixelsApartAtZoomTwo) {
    m_Profile.Profile().WriteInt("CImageView", "m_GridStyle", 1);
    m_Profile.Profile().WriteInt("CImageView", "m_GridColor", static_cast<int>(0xFF0000FFu));
    Open();
    m_View->OnCmdMsg(ViewGrid);
    m_View->SetZoom(2.0);
    const QImage area = m_View->RenderArea(QRect(0, 0, 100, 100));
    for (int y = 20; y < 100; ++y)
        EXPECT_EQ(area.pixel(50, y) == 0xFF0000FFu, y % 20 == 0) << y;
}

TEST_F(ImageViewTest, GridAndCheckerSizeCommandsKeepTheirBoundsAndSaveAtOnce) {
    Open();
    const int larger[] = {20, 40, 80, 160, 160};
    for (int size : larger) {
        m_View->OnCmdMsg(GridLarger);
        EXPECT_EQ(m_View->Settings().m_GridSize, size);
    }
    EXPECT_FALSE(Update(GridLarger).m_bEnabled);
    EXPECT_EQ(m_Profile.Profile().GetInt("CImageView", "m_GridSize", 0), 160);
    m_View->Settings().m_GridSize = 10;
    const int smaller[] = {5, 2, 2};
    for (int size : smaller) {
        m_View->OnCmdMsg(GridSmaller);
        EXPECT_EQ(m_View->Settings().m_GridSize, size);
    }
    EXPECT_FALSE(Update(GridSmaller).m_bEnabled);

    for (int i = 0; i < 6; ++i)
        m_View->OnCmdMsg(CheckerLarger);
    EXPECT_EQ(m_View->Settings().m_CheckerSize, 8);
    for (int i = 0; i < 10; ++i)
        m_View->OnCmdMsg(CheckerSmaller);
    EXPECT_EQ(m_View->Settings().m_CheckerSize, 1);
    EXPECT_EQ(m_Profile.Profile().GetInt("CImageView", "m_CheckerSize", 0), 1);
}

TEST_F(ImageViewTest, ReadsItsSettingsAndWritesBackOnlyItsOwn) {
    CQtProfile& p = m_Profile.Profile();
    p.WriteInt("CImageView", "m_CheckerSize", 6);
    p.WriteInt("CImageView", "m_GridVisible", 1);
    p.WriteInt("CImageView", "m_ChannelViewMask", 0x00FFFFFF);
    p.WriteInt("CImageView", "m_ViewMode", 1);
    Open();
    EXPECT_EQ(m_View->Settings().m_CheckerSize, 6);
    EXPECT_TRUE(m_View->Settings().m_GridVisible);
    EXPECT_EQ(m_View->Settings().m_ChannelViewMask, 0x00FFFFFFu);
    EXPECT_EQ(m_View->Settings().m_ViewMode, 1);
    EXPECT_EQ(m_View->Settings().m_AntSpeed, 75);
    m_View->SetZoom(4.0);
    m_View.reset();

    EXPECT_EQ(p.GetInt("CImageView", "m_ZF", 0), 64);
    for (const char* saved :
         {"m_CheckerColor1", "m_CheckerColor2", "m_CheckerSize", "m_GridVisible", "m_GridSnap",
          "m_GridSize", "m_GridColor", "m_GridStyle", "m_AntSpeed", "m_ChannelViewMask",
          "m_ChannelWriteMask", "m_RestoreZF", "m_ViewMode", "m_DrawOverlapWarning",
          "m_IsActiveTopMost", "m_IsActiveVisible", "m_HandlesVisible", "m_PointsVisible"})
        EXPECT_TRUE(m_Profile.Has("CImageView", saved)) << saved;
    for (const char* unsaved : {"m_CheckerColor3", "m_CheckerColor4", "m_ScreenX", "m_ScreenY",
                                "m_ScreenWidth", "m_ScreenHeight", "m_CenterPointColor",
                                "m_HotPointColor", "m_bAnimateZoom", "m_bLightIsSpotlight"})
        EXPECT_FALSE(m_Profile.Has("CImageView", unsaved)) << unsaved;
    EXPECT_EQ(static_cast<uint32_t>(p.GetInt("CImageView", "m_ChannelWriteMask", 0)), 0x00FFFFFFu);
}

TEST_F(ImageViewTest, RestoresTheZoomOnlyWhenAskedAndWithinBounds) {
    struct Case {
        int restore, zf;
        double zoom;
    } cases[] = {{1, 64, 4.0}, {1, 1, 1.0 / 16}, {1, 1000, 1.0}, {0, 64, 1.0}, {1, 0, 1.0}};
    for (const Case& c : cases) {
        m_Profile.Profile().WriteInt("CImageView", "m_RestoreZF", c.restore);
        m_Profile.Profile().WriteInt("CImageView", "m_ZF", c.zf);
        Open();
        EXPECT_EQ(m_View->GetZoom(), c.zoom) << c.restore << " " << c.zf;
        m_View.reset();
    }
}

TEST_F(ImageViewTest, ModifiedHintRepaintsOnlyThatImage) {
    m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
    Open();
    m_View->resize(300, 200);
    m_View->show();
    QApplication::processEvents();
    m_Doc->GetImageAt(1)->SetDefaultPoint({40, 30});
    m_View->SetZoom(2.0);
    CModifiedHint hint(1, 2);
    m_Doc->UpdateAllViews(nullptr, 0, &hint);
    EXPECT_EQ(m_View->LastInvalidated().boundingRect(), QRect(79, 59, 18, 18));

    // Options: the sheet's values are read again.
    m_Profile.Profile().WriteInt("CImageView", "m_CheckerColor1", static_cast<int>(0xFF112233u));
    COptionsChangedHint options;
    m_Doc->UpdateAllViews(nullptr, 0, &options);
    EXPECT_EQ(m_View->Settings().m_CheckerColor1, 0xFF112233u);
}

TEST_F(ImageViewTest, HighlightKeysSetOneEntry) {
    Open();
    m_View->OnCmdMsg(Highlight0 + 3);
    EXPECT_EQ(m_View->Highlight()[3], 1);
    m_View->OnCmdMsg(Highlight0 + 12);
    EXPECT_EQ(m_View->Highlight()[3], 0);
    EXPECT_EQ(m_View->Highlight()[12], 1);
    m_View->OnCmdMsg(ClearHighlight);
    EXPECT_EQ(std::count(m_View->Highlight().begin(), m_View->Highlight().end(), 1), 0);
}

} // namespace
