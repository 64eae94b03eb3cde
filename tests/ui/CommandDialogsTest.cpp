// The dialogs of the layout, mip-map, import and export commands: what they
// show and what OK hands back to the command's data.

#include "UiTestSupport.h"

#include "app/ui/ExchangeDlg.h"
#include "app/ui/LayoutDlg.h"
#include "codec/TavixBinding.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

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
