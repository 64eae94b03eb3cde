// Import, export, layout and mip maps in the real windows: a folder is
// dropped on the shape list, the images go out as PNG, the layout wizard
// packs them into 1024 x 1024 and mip maps follow, all through the menus.
//
// ZY_DEMO_SPRITES=DIR drops DIR instead of generated sprites, and
// ZY_SCREENSHOT_DIR=DIR saves a picture of the main window after each step
// (run under Xvfb with QT_QPA_PLATFORM=xcb to see it as a user would).

#include "UiTestSupport.h"

#include "app/cmds/ExportCmd.h"
#include "app/cmds/LayoutCmd.h"
#include "app/cmds/MipMapCmd.h"
#include "app/ui/ChildFrame.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageListView.h"
#include "app/ui/MainFrame.h"
#include "app/ui/Zy.h"
#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include <filesystem>

using namespace uitest;

namespace {

class ExchangeWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        EnsureApplication();
        m_Profile.Profile().WriteInt("CImageView", "m_bAnimateZoom", 0);
        m_Profile.Profile().WriteInt("CTavixImage", "m_OnWorksheet", 1);
        ASSERT_TRUE(m_Zy->InitInstance({}, &m_Profile.Profile()));
        // Every dialog answered here, the way a user would fill it in.
        m_Zy->Ui()->SetDialogHook([this](CDialogData& data) -> std::optional<bool> {
            m_Dialogs.push_back(data.GetDialogName());
            if (auto* out = dynamic_cast<CExportDlgData*>(&data)) {
                out->m_Folder =
                    (std::filesystem::path(m_Profile.Folder().toStdString()) / "exported").string();
                out->m_TavixModule = TavixFind("png");
                out->m_NameFormat = CExportCmd::kImageName;
            } else if (auto* layout = dynamic_cast<CLayoutDlgData*>(&data)) {
                layout->m_Width = layout->m_Height = 1024;
                layout->m_Rotate = 1;
                layout->m_Platform = 1; // 256 x 256 pages
            } else if (auto* mip = dynamic_cast<CMipMapDlgData*>(&data)) {
                mip->m_Count = 3;
            }
            return true;
        });
        m_Zy->Ui()->SetMessageHook(
            [this](const std::string& text, MsgButtons, MsgIcon, const std::string&) {
                m_Messages.push_back(text);
                return std::optional<MsgAnswer>(MsgAnswer::OK);
            });
    }
    void TearDown() override {
        m_Zy.reset();
        QApplication::processEvents();
    }
    CChildFrame* Child() { return m_Zy->MainFrame()->ActiveChild(); }
    CTavixDoc* Doc() { return Child()->GetDocument(); }
    void Run(unsigned id) {
        QAction* action = m_Zy->MainFrame()->Action(id);
        ASSERT_NE(action, nullptr) << id;
        m_Zy->MainFrame()->UpdateAction(action);
        ASSERT_TRUE(action->isEnabled()) << id;
        action->trigger();
        QApplication::processEvents();
    }
    void Picture(const char* name) {
        const char* folder = getenv("ZY_SCREENSHOT_DIR");
        if (!folder) return;
        QApplication::processEvents();
        m_Zy->MainFrame()->grab().save(QDir(folder).filePath(name));
    }
    // A folder of sprites: the one named by ZY_DEMO_SPRITES, or 60 made here
    // in two subfolders.
    QString Sprites() {
        if (const char* demo = getenv("ZY_DEMO_SPRITES")) return demo;
        const std::filesystem::path root =
            std::filesystem::path(m_Profile.Folder().toStdString()) / "sprites";
        for (int i = 0; i < 60; ++i) {
            const std::filesystem::path file =
                root / (i % 2 ? "walk" : "jump") / ("s" + std::to_string(i) + ".png");
            std::filesystem::create_directories(file.parent_path());
            auto image = MakeImage(8 + (i * 7) % 40, 8 + (i * 11) % 50, 32, "",
                                   0xFF000000u | (i * 0x040810u));
            TavixFrame frame = image->ToFrame();
            std::string error;
            EXPECT_TRUE(TavixWriteFile(file.string(), TavixFind("png"), {&frame}, error)) << error;
        }
        return QString::fromStdString(root.string());
    }
    void Drop(const QString& folder) {
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(folder)});
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        // Straight to the view's drop handler: without a drag in progress
        // the application drops a synthetic drop event on its way.
        struct Access : CImageListView {
            using CImageListView::dropEvent;
        };
        (Child()->ListView()->*static_cast<void (CImageListView::*)(QDropEvent*)>(
                                   &Access::dropEvent))(&drop);
        QApplication::processEvents();
    }

    TempProfile m_Profile;
    std::unique_ptr<CZy> m_Zy = std::make_unique<CZy>();
    std::vector<std::string> m_Dialogs;
    std::vector<std::string> m_Messages;
};

TEST_F(ExchangeWindowTest, DropExportLayoutAndMipMaps) {
    const QString folder = Sprites();
    Drop(folder);
    const int imported = Doc()->GetImageCount();
    ASSERT_GT(imported, 0);
    EXPECT_EQ(Doc()->GetFocusIndex(), imported - 1);
    Picture("1-imported.png");

    Doc()->GetSelectionModel().SelectAll();
    Run(ZyIds::Export);
    const std::filesystem::path exported =
        std::filesystem::path(m_Profile.Folder().toStdString()) / "exported";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(exported), {}), imported);

    Run(ZyIds::LayoutWizard);
    // Everything fits unless the wizard said otherwise (a big demo folder).
    for (int i = 0; i < imported && m_Messages.empty(); ++i) {
        const CRect a = Doc()->GetImageAt(i)->GetPlacementRect();
        EXPECT_TRUE(a.left >= 0 && a.top >= 0 && a.right <= 1024 && a.bottom <= 1024) << i;
        for (int j = 0; j < i; ++j) {
            const CRect b = Doc()->GetImageAt(j)->GetPlacementRect();
            EXPECT_FALSE(a.left < b.right && b.left < a.right && a.top < b.bottom &&
                         b.top < a.bottom)
                << i << "," << j;
        }
    }
    Run(ZyIds::ViewZoomOut);
    Picture("2-layout.png");

    Doc()->GetSelectionModel().SelectAll(false);
    Doc()->GetSelectionModel().Select(0);
    const CSize first = Doc()->GetImageAt(0)->GetSize();
    Run(ZyIds::CreateMipMaps);
    EXPECT_STREQ(Doc()->GetImageAt(1)->GetInfo()->framename, "mm1");
    EXPECT_EQ(Doc()->GetImageAt(1)->GetSize(), (CSize{first.cx / 2, first.cy / 2}));
    EXPECT_EQ(Child()->ListView()->model()->rowCount(), Doc()->GetImageCount());
    for (int i = 0; i < 4; ++i)
        Doc()->GetSelectionModel().Select(i);
    Doc()->SetFocus(0, true);
    Doc()->UpdateAllViews(nullptr);
    Picture("3-mipmaps.png");
    EXPECT_EQ(m_Dialogs, (std::vector<std::string>{"CExportDlg", "CLayoutDlg", "CMipMapDlg"}));
}

} // namespace
