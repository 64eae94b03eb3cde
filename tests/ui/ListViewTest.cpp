// The shape list: cell and pane texts, navigation, selection commands and
// range expressions, the animation's capture and restore, drops, and the
// hints it sends and answers.

#include "UiTestSupport.h"

#include "app/doc/Hints.h"
#include "app/doc/ImageListClip.h"
#include "app/ui/CaptionStrip.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageListDrag.h"
#include "app/ui/ImageListFormat.h"
#include "app/ui/ImageListModel.h"
#include "app/ui/ImageListView.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QMimeData>

#include <functional>

using namespace uitest;
using namespace ZyIds;

namespace {

// A view that keeps every hint it is sent.
class RecordingView : public CView {
  public:
    void OnUpdate(CView*, long, CObject* hint) override {
        if (auto* modified = dynamic_cast<CModifiedHint*>(hint))
            ranges.push_back(modified->m_Range);
        ++updates;
    }
    std::vector<CRange> ranges;
    int updates = 0;
};

std::vector<int> selectedRows(CTavixDoc& doc) {
    std::vector<int> rows;
    for (int i = 0; i < doc.GetImageCount(); ++i)
        if (doc.GetSelectionModel().IsSelected(i)) rows.push_back(i);
    return rows;
}

std::vector<std::string> names(const CTavixDoc& doc) {
    std::vector<std::string> out;
    for (const CTavixImage* image : doc.GetImages())
        out.push_back(image->GetName());
    return out;
}

class ListViewTest : public ::testing::Test {
  protected:
    std::string UndoText() {
        CCmdUI ui(Undo);
        m_Doc->OnUpdateCmdUI(&ui);
        return ui.m_strText;
    }
    void Open(int count) {
        m_View.reset();
        m_Doc = MakeDocument(count);
        m_View = std::make_unique<CImageListView>(m_Doc.get());
    }
    void Select(const std::vector<int>& rows) {
        CRange range(m_Doc->GetImageCount());
        for (int row : rows)
            range.SetAt(row, 1);
        m_View->SetSelection(range);
    }
    bool Enabled(unsigned id) {
        CUiCmdUI ui(id);
        return m_View->OnUpdateCmdUI(ui) && ui.m_bEnabled;
    }

    TempProfile m_Profile;
    ScriptedUi m_Ui;
    std::unique_ptr<CTavixDoc> m_Doc;
    std::unique_ptr<CImageListView> m_View;
};

TEST(ListTexts, CellsOfEachColumn) {
    EnsureApplication();
    auto small = MakeImage(3, 2, 4);
    auto named = MakeImage(64, 32, 8, "ship");
    TavixInfo* info = named->GetInfoForWrite();
    info->centerx = 5;
    info->centery = -3;
    info->defaultx = 16;
    info->defaulty = 24;
    info->packed = 1;
    strcpy(info->comment, "a comment");
    struct Case {
        const CTavixImage* image;
        int row, column;
        const char* text;
    } cases[] = {
        {small.get(), 0, 0, "image 1"},   {small.get(), 6, 0, "image 7"},
        {named.get(), 0, 0, "ship"},      {small.get(), 0, 1, "3x2x4"},
        {named.get(), 0, 1, "64x32x8"},   {named.get(), 0, 2, "5,-3"},
        {small.get(), 0, 2, "0,0"},       {named.get(), 0, 3, "16,24"},
        {named.get(), 0, 4, "yes"},       {small.get(), 0, 4, "no"},
        {small.get(), 0, 5, "2"},         {named.get(), 0, 5, "2048"},
        {named.get(), 0, 6, "a comment"}, {small.get(), 0, 6, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ImageCellText(*c.image, c.row, c.column), c.text) << c.row << "/" << c.column;
    EXPECT_STREQ(kListColumns[0].header, "Name");
    EXPECT_STREQ(kListColumns[6].header, "Comment");
}

TEST(ListTexts, IndexAndSizePanes) {
    struct Size {
        int64_t bytes;
        const char* text;
    } sizes[] = {{0, "0KB"},    {900, ">1KB"},       {1023, ">1KB"},     {1024, "1KB"},
                 {1025, "2KB"}, {1048575, "1024KB"}, {1048576, "1.0MB"}, {1572864, "1.5MB"}};
    for (const Size& s : sizes)
        EXPECT_EQ(SizePaneText(s.bytes), s.text) << s.bytes;
    EXPECT_EQ(IndexPaneText(0, 0), "0/0");
    EXPECT_EQ(IndexPaneText(0, 3), "1/3 (index 0)");
    EXPECT_EQ(IndexPaneText(2, 3), "3/3 (index 2)");

    // The pane counts whole bytes per image, unlike the column.
    EnsureApplication();
    CTavixDoc doc;
    doc.InsertImage(0, MakeImage(3, 2, 4).release());
    EXPECT_EQ(DocumentByteSize(doc), 3);
}

TEST_F(ListViewTest, EmptyDocumentShowsZeroPanesAndDisablesNavigation) {
    Open(0);
    EXPECT_EQ(m_View->IndexPaneText(), "0/0");
    EXPECT_EQ(m_View->SizePaneText(), "0KB");
    for (unsigned id : {NextImage, PreviousImage, FirstImage, LastImage, PlayForward, PlayBackward,
                        EditSelectAll, EditSelectNone, EditInvertSelection, EditSelectRange})
        EXPECT_FALSE(Enabled(id)) << id;
}

TEST_F(ListViewTest, EnableRulesFollowTheImageCount) {
    struct Case {
        int count;
        bool navigation, selection;
    } cases[] = {{1, false, true}, {2, true, true}};
    for (const Case& c : cases) {
        Open(c.count);
        for (unsigned id : {NextImage, PreviousImage, FirstImage, LastImage, PlayForward})
            EXPECT_EQ(Enabled(id), c.navigation) << c.count << " images, " << id;
        for (unsigned id : {EditSelectAll, EditSelectNone, EditInvertSelection, EditSelectRange})
            EXPECT_EQ(Enabled(id), c.selection) << c.count << " images, " << id;
    }
}

TEST_F(ListViewTest, NextAndPreviousWrapAndSelectOnlyTheFocus) {
    Open(3);
    Select({0, 1});
    struct Step {
        void (CImageListView::*move)();
        int focus;
    } steps[] = {{&CImageListView::Last, 2},     {&CImageListView::Next, 0},
                 {&CImageListView::Previous, 2}, {&CImageListView::Previous, 1},
                 {&CImageListView::First, 0},    {&CImageListView::Next, 1}};
    for (const Step& step : steps) {
        (m_View.get()->*step.move)();
        EXPECT_EQ(m_View->GetFocusIndex(), step.focus);
        EXPECT_EQ(m_Doc->GetFocusIndex(), step.focus);
        EXPECT_EQ(selectedRows(*m_Doc), std::vector<int>{step.focus});
    }
    EXPECT_EQ(m_View->IndexPaneText(), "2/3 (index 1)");
}

TEST_F(ListViewTest, FocusChangeTellsTheOtherViewsAboutBothImages) {
    Open(4);
    RecordingView recorder;
    m_Doc->AddView(&recorder);
    m_View->Last(); // from 0 to 3
    m_Doc->RemoveView(&recorder);
    ASSERT_FALSE(recorder.ranges.empty());
    const CRange& focus = recorder.ranges.back();
    ASSERT_EQ(focus.GetSize(), 4);
    EXPECT_TRUE(focus.IsSelected(0));
    EXPECT_TRUE(focus.IsSelected(3));
    EXPECT_EQ(focus.Count(), 2);
}

TEST_F(ListViewTest, SelectAllNoneAndInvert) {
    Open(4);
    Select({1});
    m_View->InvertSelection();
    EXPECT_EQ(selectedRows(*m_Doc), (std::vector<int>{0, 2, 3}));
    m_View->SelectNone();
    EXPECT_TRUE(selectedRows(*m_Doc).empty());
    m_View->OnCmdMsg(EditSelectAll);
    EXPECT_EQ(selectedRows(*m_Doc), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(m_Doc->GetSelectionModel().FirstUnselected(), -1);
    EXPECT_EQ(m_Doc->GetSelectionModel().NextSelected(1), 2);
}

TEST_F(ListViewTest, SelectByExpressionInEachMode) {
    struct Case {
        const char* expression;
        int mode;
        std::vector<int> before, after;
    } cases[] = {
        {"1..2", 0, {0}, {1, 2}}, {"0", 1, {2}, {0, 2}}, {"1", 2, {0, 1, 2}, {0, 2}},
        {"!2", 0, {}, {0, 1, 3}}, {"img3", 0, {}, {3}},  {"", 0, {1}, {0, 1, 2, 3}},
    };
    Open(4);
    for (const Case& c : cases) {
        Select(c.before);
        EXPECT_TRUE(m_View->SelectByExpression(c.expression, c.mode));
        EXPECT_EQ(selectedRows(*m_Doc), c.after) << c.expression << " mode " << c.mode;
    }
    EXPECT_TRUE(m_Ui.m_Messages.empty());
}

TEST_F(ListViewTest, InvalidRangeLeavesTheSelection) {
    Open(4);
    Select({1});
    EXPECT_FALSE(m_View->SelectByExpression("0..7", 0));
    ASSERT_EQ(m_Ui.m_Messages.size(), 1u);
    EXPECT_EQ(m_Ui.m_Messages[0], "Invalid range.");
    EXPECT_EQ(selectedRows(*m_Doc), std::vector<int>{1});

    // Through the command, the dialog's expression is remembered.
    m_Ui.m_DialogOk = true;
    SelectWildcardState() = {"2..3", 0};
    m_View->OnCmdMsg(EditSelectRange);
    EXPECT_EQ(m_Ui.m_Dialogs.back(), "CSelectWildcardDlg");
    EXPECT_EQ(selectedRows(*m_Doc), (std::vector<int>{2, 3}));
}

TEST_F(ListViewTest, AnimationStepsThroughTheCapturedSelectionAndRestoresIt) {
    Open(5);
    Select({1, 2, 4});
    m_View->MoveFocus(1, false, true);
    m_View->Play(1);
    EXPECT_EQ(m_View->AnimationDirection(), 1);
    EXPECT_TRUE(m_View->IsSelectionCaptured());
    std::vector<int> seen;
    for (int tick = 0; tick < 4; ++tick) {
        m_View->AnimationTick();
        seen.push_back(m_View->GetFocusIndex());
    }
    EXPECT_EQ(seen, (std::vector<int>{2, 4, 1, 2}));
    CUiCmdUI forward(PlayForward);
    m_View->OnUpdateCmdUI(forward);
    EXPECT_TRUE(forward.m_bChecked);

    m_View->OnCmdMsg(PlayBackward); // either play command stops
    EXPECT_EQ(m_View->AnimationDirection(), 0);
    EXPECT_EQ(selectedRows(*m_Doc), (std::vector<int>{1, 2, 4}));
}

TEST_F(ListViewTest, AnimationWithOneSelectedPlaysAllAndKeepsTheLastFocus) {
    Open(3);
    Select({0});
    m_View->Play(-1);
    EXPECT_FALSE(m_View->IsSelectionCaptured());
    m_View->AnimationTick();
    EXPECT_EQ(m_View->GetFocusIndex(), 2);
    m_View->AnimationTick();
    EXPECT_EQ(m_View->GetFocusIndex(), 1);
    m_View->Play(-1);
    EXPECT_EQ(selectedRows(*m_Doc), std::vector<int>{1});
}

TEST_F(ListViewTest, FrameRateSetsTheTimerAndZeroFallsBack) {
    struct Case {
        int rate, interval;
    } cases[] = {{15, 66}, {20, 50}, {0, 66}, {-3, 66}, {2000, 1}};
    Open(2);
    for (const Case& c : cases) {
        ZyProfile().WriteInt("CImageListView", "m_FrameRate", c.rate);
        m_View->Play(1);
        EXPECT_EQ(m_View->AnimationInterval(), c.interval) << c.rate;
        m_View->Play(1);
    }
}

TEST_F(ListViewTest, MovingWithinTheDocument) {
    struct Case {
        const char* what;
        std::vector<int> selected;
        int target;
        std::vector<std::string> order;
        int focus;
    } cases[] = {
        {"onto a row below", {1}, 3, {"img0", "img2", "img3", "img1"}, 3},
        {"onto a row above", {3}, 1, {"img0", "img3", "img1", "img2"}, 1},
        {"onto itself", {1}, 1, {"img0", "img1", "img2", "img3"}, 0},
        {"below the last row", {0}, -1, {"img1", "img2", "img3", "img0"}, 3},
        {"bounded past the end", {0, 1}, 3, {"img2", "img3", "img0", "img1"}, 2},
        {"every row selected", {0, 1, 2, 3}, 2, {"img0", "img1", "img2", "img3"}, 0},
    };
    for (const Case& c : cases) {
        Open(4);
        Select(c.selected);
        std::vector<CTavixImage*> dragged;
        for (int row : c.selected)
            dragged.push_back(m_Doc->GetImageAt(row));
        m_View->DropImagePointers(dragged, m_Doc.get(), c.target);
        EXPECT_EQ(names(*m_Doc), c.order) << c.what;
        EXPECT_EQ(m_View->GetFocusIndex(), c.focus) << c.what;
    }
}

TEST_F(ListViewTest, DroppingFromAnotherDocumentCopiesAndSelectsThem) {
    Open(2);
    auto source = MakeDocument(3);
    std::vector<CTavixImage*> dragged = {source->GetImageAt(0), source->GetImageAt(2)};
    m_View->DropImagePointers(dragged, source.get(), 1);
    EXPECT_EQ(names(*m_Doc), (std::vector<std::string>{"img0", "img0", "img2", "img1"}));
    EXPECT_NE(m_Doc->GetImageAt(1), source->GetImageAt(0)); // a copy, not the same record
    EXPECT_EQ(selectedRows(*m_Doc), (std::vector<int>{1, 2}));
    EXPECT_EQ(m_View->GetFocusIndex(), 1);
    EXPECT_EQ(source->GetImageCount(), 3);
    EXPECT_TRUE(m_Doc->IsModified());
}

TEST_F(ListViewTest, DroppingABitmapAppendsAFocusedImage) {
    Open(2);
    QImage bitmap(4, 3, QImage::Format_ARGB32);
    bitmap.fill(QColor(10, 20, 30));
    m_View->DropBitmap(bitmap);
    ASSERT_EQ(m_Doc->GetImageCount(), 3);
    const CTavixImage* image = m_Doc->GetImageAt(2);
    EXPECT_EQ(image->GetBpp(), 32);
    EXPECT_EQ(image->GetPixelValue(1, 1), 0xFF0A141Eu);
    EXPECT_EQ(m_View->GetFocusIndex(), 2);
    EXPECT_EQ(selectedRows(*m_Doc), std::vector<int>{2});
}

// Left half red, right half blue: a flip shows at (0, 0).
void paintHalves(CTavixImage& image) {
    for (int y = 0; y < image.GetHeight(); ++y)
        for (int x = 0; x < image.GetWidth(); ++x)
            reinterpret_cast<uint32_t*>(image.GetRow(y))[x] =
                x < image.GetWidth() / 2 ? 0xFFFF0000u : 0xFF0000FFu;
}

TEST_F(ListViewTest, DragAfterAFlipThenUndoPutsBackExactlyTheList) {
    Open(3);
    paintHalves(*m_Doc->GetImageAt(0));
    const std::vector<CTavixImage*> original(m_Doc->GetImages().begin(), m_Doc->GetImages().end());
    Select({0});
    m_Doc->OnCmdMsg(FlipHorizontal);
    CTavixImage* flipped = m_Doc->GetImageAt(0);
    ASSERT_EQ(flipped->GetPixelValue(0, 0), 0xFF0000FFu);

    m_View->DropImagePointers({flipped}, m_Doc.get(), -1); // below the last row
    EXPECT_EQ(names(*m_Doc), (std::vector<std::string>{"img1", "img2", "img0"}));
    EXPECT_EQ(UndoText(), "Undo Move Images\tCtrl+Z");

    struct Step {
        std::vector<std::string> order;
        int focus;
    } steps[] = {{{"img0", "img1", "img2"}, 0}, // undo the move
                 {{"img1", "img2", "img0"}, 2}, // redo it
                 {{"img0", "img1", "img2"}, 0}};
    for (const Step& step : steps) {
        m_Doc->OnCmdMsg(Undo);
        EXPECT_EQ(names(*m_Doc), step.order);
        EXPECT_EQ(m_View->GetFocusIndex(), step.focus);
        EXPECT_EQ(selectedRows(*m_Doc), std::vector<int>{step.focus});
        EXPECT_EQ(m_View->Model()->rowCount(), 3);
    }
    // The same three records, the flipped one still flipped.
    EXPECT_EQ(m_Doc->GetImageAt(0), flipped);
    EXPECT_EQ(m_Doc->GetImageAt(1), original[1]);
    EXPECT_EQ(m_Doc->GetImageAt(2), original[2]);
    EXPECT_EQ(flipped->GetPixelValue(0, 0), 0xFF0000FFu);
}

TEST_F(ListViewTest, DropsFromElsewhereAreUndoableInsertions) {
    auto source = MakeDocument(3);
    QImage bitmap(4, 3, QImage::Format_ARGB32);
    bitmap.fill(QColor(10, 20, 30));
    struct Case {
        const char* what;
        std::function<void(CImageListView&)> drop;
        std::vector<std::string> after;
        const char* undoText;
    } cases[] = {
        {"images of another document",
         [&](CImageListView& view) {
             view.DropImagePointers({source->GetImageAt(0), source->GetImageAt(2)}, source.get(),
                                    1);
         },
         {"img0", "img0", "img2", "img1"},
         "Undo Drop Images\tCtrl+Z"},
        {"a bitmap",
         [&](CImageListView& view) { view.DropBitmap(bitmap); },
         {"img0", "img1", ""},
         "Undo Drop Bitmap\tCtrl+Z"},
        {"whole records from another Zy process",
         [&](CImageListView& view) {
             QMimeData mime;
             mime.setData(kImageListClipFormat,
                          QByteArray::fromStdString(EncodeImageList({source->GetImageAt(2)})));
             view.DropMime(&mime, 0);
         },
         {"img2", "img0", "img1"},
         "Undo Drop Images\tCtrl+Z"},
        {"a block of addresses with no drag under way in this process",
         [&](CImageListView& view) {
             QMimeData mime;
             mime.setData(kImageListMimeType, EncodeImages({source->GetImageAt(1)}));
             mime.setData(kImageListClipFormat,
                          QByteArray::fromStdString(EncodeImageList({source->GetImageAt(1)})));
             view.DropMime(&mime, -1);
         },
         {"img0", "img1", "img1"},
         "Undo Drop Images\tCtrl+Z"},
    };
    for (const Case& c : cases) {
        Open(2);
        m_View->DropImagePointers({}, source.get(), 0); // nothing dragged: nothing happens
        EXPECT_EQ(UndoText(), "Can't Undo\tCtrl+Z") << c.what;
        c.drop(*m_View);
        EXPECT_EQ(names(*m_Doc), c.after) << c.what;
        EXPECT_EQ(UndoText(), c.undoText) << c.what;
        EXPECT_TRUE(m_Doc->IsModified()) << c.what;
        m_Doc->OnCmdMsg(Undo);
        EXPECT_EQ(names(*m_Doc), (std::vector<std::string>{"img0", "img1"})) << c.what;
        EXPECT_EQ(m_View->Model()->rowCount(), 2) << c.what;
        EXPECT_FALSE(m_Doc->IsModified()) << c.what; // back where it started
        m_Doc->OnCmdMsg(Undo);                       // redo
        EXPECT_EQ(names(*m_Doc), c.after) << c.what;
    }
    EXPECT_EQ(source->GetImageCount(), 3);
}

TEST_F(ListViewTest, EditingANameInPlaceIsAnUndoableRename) {
    Open(2);
    CImageListModel* model = m_View->Model();
    const QModelIndex name = model->index(1, 0);
    EXPECT_TRUE(model->flags(name) & Qt::ItemIsEditable);
    EXPECT_FALSE(model->flags(model->index(1, 1)) & Qt::ItemIsEditable);
    EXPECT_EQ(model->data(name, Qt::EditRole).toString(), "img1");
    EXPECT_TRUE(model->setData(name, "ship", Qt::EditRole));
    EXPECT_EQ(m_Doc->GetImageAt(1)->GetName(), "ship");
    EXPECT_EQ(UndoText(), "Undo Rename\tCtrl+Z");
    EXPECT_FALSE(model->setData(name, "ship", Qt::EditRole)); // unchanged: no command
    m_Doc->OnCmdMsg(Undo);
    EXPECT_EQ(m_Doc->GetImageAt(1)->GetName(), "img1");
    EXPECT_EQ(model->data(name, Qt::DisplayRole).toString(), "img1");
}

TEST_F(ListViewTest, TheNameColumnFitsTheLongestName) {
    Open(2);
    const int standard = m_View->columnWidth(0);
    const QString longName = "a_rather_long_sprite_name_0123";
    ASSERT_TRUE(m_View->Model()->setData(m_View->Model()->index(1, 0), longName, Qt::EditRole));
    EXPECT_GT(m_View->columnWidth(0),
              QFontMetrics(m_View->font()).horizontalAdvance(longName) + 16);
    m_Doc->OnCmdMsg(Undo); // short names again: back to the standard width
    EXPECT_EQ(m_View->columnWidth(0), standard);
}

TEST_F(ListViewTest, DeleteHintKeepsAFocusedSelectedImage) {
    Open(4);
    m_View->Last();
    m_Doc->RemoveImage(3);
    m_Doc->RemoveImage(2);
    CRange removed(4);
    removed.SetAt(2, 1);
    removed.SetAt(3, 1);
    CDeleteHint hint(removed);
    m_Doc->UpdateAllViews(nullptr, 0, &hint);
    EXPECT_EQ(m_View->Model()->rowCount(), 2);
    EXPECT_EQ(m_View->GetFocusIndex(), 1);
    EXPECT_EQ(selectedRows(*m_Doc), std::vector<int>{1});
}

TEST_F(ListViewTest, ShowAndHideSetTheVisibleFlag) {
    Open(3);
    Select({0, 2});
    m_View->OnCmdMsg(ListShow);
    EXPECT_EQ(m_Doc->GetImageAt(0)->m_OnWorksheet, 1);
    EXPECT_EQ(m_Doc->GetImageAt(1)->m_OnWorksheet, 0);
    const QModelIndex cell = m_View->Model()->index(0, 0);
    EXPECT_FALSE(m_View->Model()->data(cell, Qt::DecorationRole).isNull());
    m_View->OnCmdMsg(ListHide);
    EXPECT_EQ(m_Doc->GetImageAt(2)->m_OnWorksheet, 0);
    EXPECT_EQ(m_View->Caption()->Text().toStdString(), "Shape List");
}

} // namespace
