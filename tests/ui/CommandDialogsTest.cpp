// The dialogs of the layout, mip-map, import and export commands: what they
// show and what OK hands back to the command's data.

#include "UiTestSupport.h"

#include "app/ui/ColRedWiz.h"
#include "app/ui/ExchangeDlg.h"
#include "app/ui/LayoutDlg.h"
#include "codec/TavixBinding.h"
#include "imaging/quant/quant.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardItemModel>

#include <cstdlib>

using namespace uitest;

namespace {

QCheckBox* checkBox(QWidget& parent, const QString& text) {
    for (QCheckBox* box : parent.findChildren<QCheckBox*>())
        if (box->text() == text) return box;
    return nullptr;
}

TEST(LayoutDialog, ShowsTheSettingsAndStoresTheEdits) {
    EnsureApplication();
    CLayoutDlgData data;
    data.m_Platform = 0;
    CLayoutDlg dialog(data, nullptr);
    QCheckBox* uvs = checkBox(dialog, "Respect Texture Pages");
    QCheckBox* edges = checkBox(dialog, "Check Texture Page Edges");
    ASSERT_TRUE(uvs && edges);
    EXPECT_FALSE(edges->isEnabled()) << "the PC has no texture pages";
    auto* platform = dialog.findChild<QComboBox*>();
    ASSERT_EQ(platform->count(), kLayoutPlatformCount);
    platform->setCurrentIndex(1);
    EXPECT_TRUE(edges->isEnabled());
    uvs->setChecked(false);
    EXPECT_FALSE(edges->isEnabled()) << "edges only count while pages are respected";
    const QList<QSpinBox*> spins = dialog.findChildren<QSpinBox*>();
    ASSERT_EQ(spins.size(), 4);
    spins[2]->setValue(1024);
    checkBox(dialog, "Shapes can be rotated")->setChecked(true);
    dialog.Store(data);
    EXPECT_EQ(data.m_Platform, 1);
    EXPECT_EQ(data.m_Width, 1024);
    EXPECT_EQ(data.m_Rotate, 1);
    EXPECT_EQ(data.m_CheckUVs, 0);
}

TEST(ExportDialog, ListsTheWritableFormatsAndTheFourNameFormats) {
    EnsureApplication();
    if (!TavixIsBound()) {
        ASSERT_TRUE(TavixBind());
    }
    CExportDlgData data;
    data.m_Folder = "/tmp/out";
    data.m_TavixModule = TavixFind("png");
    data.m_NameFormat = 2;
    CExportDlg dialog(data, nullptr);
    const QList<QComboBox*> combos = dialog.findChildren<QComboBox*>();
    ASSERT_EQ(combos.size(), 2);
    EXPECT_EQ(combos[0]->count(), TavixCount());
    EXPECT_EQ(combos[1]->currentText(), "Image name in UPPER CASE");
    combos[1]->setCurrentIndex(1);
    dialog.findChild<QLineEdit*>()->setText("/tmp/elsewhere");
    CExportDlgData out;
    dialog.Store(out);
    EXPECT_EQ(out.m_TavixModule, TavixFind("png"));
    EXPECT_EQ(out.m_NameFormat, 1);
    EXPECT_EQ(out.m_Folder, "/tmp/elsewhere");
}

} // namespace

// ---- Color Remap Wizard -------------------------------------------------

namespace {

// Saves `widget` as NAME.png in $ZY_SCREENSHOTS when it is set, so the
// pages can be looked at (xvfb-run with QT_QPA_PLATFORM=xcb).
void grabIfAsked(QWidget& widget, const char* name) {
    const char* folder = getenv("ZY_SCREENSHOTS");
    if (!folder || !*folder) return;
    widget.grab().save(QString("%1/%2.png").arg(folder, name));
}

TEST(ColRedWizard, PagesFollowTheTypeAndStoreTheirSettings) {
    EnsureApplication();
    CColRedWizData data;
    data.m_Type = 0;
    data.m_Method = quant_find("Lloyd") - 1;
    data.m_Operation = 1;
    CColRedWiz wizard(data, nullptr);
    wizard.show();
    grabIfAsked(wizard, "colred-type");
    EXPECT_EQ(wizard.m_TypePage->nextId(), CColRedWiz::kPalettePage);
    wizard.next();
    ASSERT_EQ(wizard.currentId(), CColRedWiz::kPalettePage);
    CPalettePage& palette = *wizard.m_PalettePage;
    EXPECT_TRUE(palette.m_Method->currentText().startsWith("Lloyd"));
    EXPECT_EQ(palette.m_Operation->currentText(), "Unique Palettes");
    // The null entries are listed (positions are method numbers) but cannot be chosen.
    auto* model = qobject_cast<QStandardItemModel*>(palette.m_Method->model());
    ASSERT_NE(model, nullptr);
    for (int i = 0; i < palette.m_Method->count(); ++i)
        EXPECT_EQ(model->item(i)->isEnabled(), !ColRedIsNullQuantizer(i + 1)) << i;
    palette.m_Depth->setCurrentIndex(1);
    EXPECT_EQ(palette.m_Colours->value(), 16) << "4 bits address 16 colours";
    EXPECT_EQ(palette.m_Colours->maximum(), 16);
    palette.m_Start->setValue(250);
    EXPECT_EQ(palette.m_Colours->value(), 6) << "the colours must fit after the start";
    palette.m_Dither->setCurrentIndex(3);
    palette.m_ExactFirst->setChecked(true);
    grabIfAsked(wizard, "colred-palette");
    CColRedWizData out;
    wizard.Store(out);
    EXPECT_EQ(out.m_Type, 0);
    EXPECT_EQ(out.m_Depth, 1);
    EXPECT_EQ(out.m_Method, quant_find("Lloyd") - 1);
    EXPECT_EQ(out.m_Start, 250);
    EXPECT_EQ(out.m_Colours, 6);
    EXPECT_EQ(out.m_Operation, 1);
    EXPECT_EQ(out.m_PalDither, 3);
    EXPECT_EQ(out.m_ExactFirst, 1);

    wizard.back();
    wizard.m_TypePage->m_TrueColor->setChecked(true);
    wizard.next();
    ASSERT_EQ(wizard.currentId(), CColRedWiz::kTrueColorPage);
    CTrueColorPage& trueColor = *wizard.m_TrueColorPage;
    trueColor.m_Layout->setCurrentIndex(trueColor.m_Layout->findText("565 (16 bits)"));
    EXPECT_EQ(trueColor.m_Bits[2]->value(), 6);
    trueColor.m_Bits[0]->setValue(3);
    EXPECT_EQ(trueColor.m_Layout->currentText(), "Custom") << "edited bits are no named layout";
    grabIfAsked(wizard, "colred-truecolor");
    wizard.Store(out);
    EXPECT_EQ(out.m_Type, 1);
    EXPECT_EQ(std::vector<int>({out.m_ABits, out.m_RBits, out.m_GBits, out.m_BBits}),
              std::vector<int>({3, 5, 6, 5}));
    for (QSpinBox* box : {trueColor.m_Bits[1], trueColor.m_Bits[2], trueColor.m_Bits[3]})
        box->setValue(0);
    EXPECT_FALSE(trueColor.isComplete()) << "no colour bits left";
}

} // namespace
