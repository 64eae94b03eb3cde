// The image commands' dialogs on the offscreen platform: the Image Size
// conversions as the user changes units and operation, the Enlarge Canvas
// anchor box, and the live before/after preview, which never touches the
// image it shows. With ZY_SCREENSHOT_DIR set, each dialog is also saved
// there as a PNG for a look by eye.

#include "UiTestSupport.h"

#include "app/cmds/AdjustCmds.h"
#include "app/cmds/GeometryCmds.h"
#include "app/cmds/SizeCmds.h"
#include "app/ui/FieldFormDlg.h"
#include "app/ui/ImageCmdDlgs.h"
#include "app/ui/PreviewPane.h"
#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPixmap>
#include <QToolButton>

#include <cstdlib>
#include <cstring>

using namespace uitest;

namespace {

// A 40 x 30 sprite: a colour ramp in an opaque disc on a transparent field.
std::unique_ptr<CTavixImage> sprite() {
    auto image = std::make_unique<CTavixImage>();
    image->Create(40, 30, 32);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            const int dx = x - 20, dy = y - 15;
            const uint32_t argb = dx * dx + dy * dy < 196 ? 0xFF000000u | uint32_t(x * 6) << 16 |
                                                                uint32_t(y * 8) << 8 | 0x40
                                                          : 0;
            memcpy(image->GetPixelAddress(x, y), &argb, 4);
        }
    return image;
}

void shoot(QWidget& widget, const char* name) {
    const char* folder = getenv("ZY_SCREENSHOT_DIR");
    if (!folder) return;
    widget.adjustSize();
    widget.grab().save(QString("%1/%2.png").arg(folder, name));
}

template <typename Data>
CDialogData::PreviewFn preview(const char* module,
                               std::vector<ModuleValue> (*values)(const Data&)) {
    return [module, values](const CDialogData& data, const CTavixImage& image) {
        const std::vector<ModuleValue> moduleValues = values(static_cast<const Data&>(data));
        return image.RunModule(module_find(module), moduleValues.data(),
                               static_cast<int>(moduleValues.size()));
    };
}

TEST(ImageSizeDialog, ConvertsTheValuesAsUnitsAndOperationChange) {
    EnsureApplication();
    auto image = sprite();
    CImageSizeDlgData data;
    data.m_CurrentWidth = 200;
    data.m_CurrentHeight = 50;
    data.m_Width = 150;
    data.m_Height = 100;
    data.m_PreviewSource = image.get();
    data.m_Preview = [](const CDialogData& d, const CTavixImage& source) {
        return CImageSizeCmd::Resize(static_cast<const CImageSizeDlgData&>(d), source);
    };
    CImageSizeDlg dialog(data, nullptr);
    shoot(dialog, "image-size");
    const QList<QComboBox*> lists = dialog.findChildren<QComboBox*>();
    ASSERT_EQ(lists.size(), 4); // operation, two units, interpolation
    const QList<QDoubleSpinBox*> spins = dialog.findChildren<QDoubleSpinBox*>();
    QDoubleSpinBox* width = spins[0];
    lists[1]->setCurrentIndex(CImageSizeDlgData::Pixels);
    EXPECT_EQ(width->value(), 300);
    lists[0]->setCurrentIndex(CImageSizeDlgData::Relative);
    EXPECT_EQ(width->value(), 100) << "pixels: less the current width";
    EXPECT_EQ(width->minimum(), -199);
    EXPECT_EQ(data.m_Operation, CImageSizeDlgData::Relative);
    // The preview shows 40 + 100 pixels across, 30 + 0 % down.
    const CTavixImage* after = dialog.findChild<CPreviewPane*>()->GetAfter();
    ASSERT_NE(after, nullptr);
    EXPECT_EQ(after->GetSize(), CSize(140, 30));
    EXPECT_FALSE(spins[2]->isEnabled()) << "sharpness needs a filter";
    lists[3]->setCurrentIndex(1);
    EXPECT_TRUE(spins[2]->isEnabled());
}

TEST(EnlargeCanvasDialog, ShowsTheCurrentSizeAndTakesTheAnchor) {
    EnsureApplication();
    CEnlargeCanvasDlgData data;
    data.m_CurrentWidth = 40;
    data.m_CurrentHeight = 30;
    data.m_Width = 60;
    data.m_Height = 30;
    CEnlargeCanvasDlg dialog(data, nullptr);
    shoot(dialog, "enlarge-canvas");
    EXPECT_TRUE(dialog.findChild<QToolButton*>("Anchor5")->isChecked()) << "the default anchor";
    dialog.findChild<QToolButton*>("Anchor8")->click();
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(data.m_Anchor, 8);
    EXPECT_EQ(data.m_Width, 60);
}

TEST(AdjustmentDialogs, ThePreviewFollowsTheValuesAndLeavesTheImageAlone) {
    EnsureApplication();
    auto image = sprite();
    const uint32_t middle = image->GetPixelValue(20, 15);
    CCBDlgData data;
    data.m_PreviewSource = image.get();
    data.m_Preview = preview<CCBDlgData>("contrast", &CCBCmd::Values);
    QDialog dialog;
    BuildFieldForm(dialog, data);
    auto* pane = dialog.findChild<CPreviewPane*>();
    ASSERT_NE(pane, nullptr);
    ASSERT_NE(pane->GetAfter(), nullptr);
    EXPECT_EQ(pane->GetAfter()->GetPixelValue(20, 15), middle) << "no change yet";
    dialog.findChildren<QDoubleSpinBox*>()[1]->setValue(60); // brightness
    EXPECT_NE(pane->GetAfter()->GetPixelValue(20, 15), middle);
    EXPECT_EQ(image->GetPixelValue(20, 15), middle) << "the shown image is untouched";
    shoot(dialog, "contrast-brightness");
}

// Every form-built image dialog opens with its title; the screenshots are
// for a look by eye.
TEST(AdjustmentDialogs, EveryFormHasItsTitle) {
    EnsureApplication();
    auto image = sprite();
    CHSDlgData hs;
    hs.m_Hue = 120;
    hs.m_Preview = preview<CHSDlgData>("hsl", &CHSCmd::Values);
    CGreyScaleDlgData grey;
    grey.m_Preview = preview<CGreyScaleDlgData>("grey", &CGreyScaleCmd::Values);
    CRotateArbitraryDlgData rotate;
    rotate.m_Angle = 30;
    rotate.m_Preview = [](const CDialogData& d, const CTavixImage& source) {
        const auto& r = static_cast<const CRotateArbitraryDlgData&>(d);
        const ModuleValue values[] = {ModuleValue::ofReal(-r.m_Angle * 0.017453292522222223),
                                      ModuleValue::ofUint(0), ModuleValue::ofInt(1)};
        return source.RunModule(module_find("rotate"), values, 3);
    };
    CAmountDlgData blur("CBlurDlg", 0.1, 4.0);
    blur.m_Amount = 2;
    blur.m_Preview = [](const CDialogData& d, const CTavixImage& source) {
        const ModuleValue amount =
            ModuleValue::ofReal(static_cast<const CAmountDlgData&>(d).m_Amount);
        return source.RunModule(module_find("blur"), &amount, 1);
    };
    CCanvasSizeDlgData canvas;
    CCreepDlgData creep;
    CCleanEdgeDlgData edge;
    CDeInterlaceDlgData deinterlace;
    const struct {
        CDialogData* data;
        const char* title;
        const char* shot;
    } forms[] = {{&hs, "Hue/Saturation", "hue-saturation"},
                 {&grey, "Grey Scale", "grey-scale"},
                 {&rotate, "Transform Numerically", "transform-numerically"},
                 {&blur, "Blur Amount", "blur-amount"},
                 {&canvas, "Canvas Size", "canvas-size"},
                 {&creep, "Creep", "creep"},
                 {&edge, "Clean Edges", "clean-edges"},
                 {&deinterlace, "De-Interlace", "de-interlace"}};
    for (const auto& form : forms) {
        if (form.data->m_Preview) form.data->m_PreviewSource = image.get();
        QDialog dialog;
        BuildFieldForm(dialog, *form.data);
        EXPECT_EQ(dialog.windowTitle(), form.title);
        EXPECT_EQ(dialog.findChild<CPreviewPane*>() != nullptr, bool(form.data->m_Preview))
            << form.title;
        shoot(dialog, form.shot);
    }
}

} // namespace
