// The document's image list, selection and focus, hints and observers.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "app/doc/Command.h"
#include "app/doc/Exceptions.h"
#include "app/doc/Hints.h"
#include "app/doc/TavixDoc.h"

#include <gtest/gtest.h>

using namespace zytest;

namespace {

CTavixImage* named(const char* name) {
    auto* image = new CTavixImage;
    image->Create(2, 2, 32);
    image->SetName(name);
    return image;
}

std::string names(const CTavixDoc& doc) {
    std::string text;
    for (int i = 0; i < doc.GetImageCount(); ++i)
        text += doc.GetImageAt(i)->GetName();
    return text;
}

class DocumentTest : public ::testing::Test {
  protected:
    DocumentTest() {
        for (const char* name : {"a", "b", "c"})
            doc.InsertImage(doc.GetImageCount(), named(name));
        doc.AddView(&view);
    }
    ScopedModel model;
    CTavixDoc doc;
    RecordingView view;
};

} // namespace

TEST_F(DocumentTest, InsertPlacesAfterTheGivenIndex) {
    struct {
        int index;
        const char* order;
        int position;
    } cases[] = {{-1, "xabc", 0}, {0, "axbc", 1}, {1, "abxc", 2},
                 {2, "abcx", 3},  {3, "abcx", 3}, {99, "abcx", 3}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        CTavixDoc fresh;
        for (const char* name : {"a", "b", "c"})
            fresh.InsertImage(fresh.GetImageCount(), named(name));
        EXPECT_EQ(fresh.InsertImage(c.index, named("x")), c.position);
        EXPECT_EQ(names(fresh), c.order);
        EXPECT_EQ(fresh.GetSelectionModel().GetItemCount(), 4);
    }
}

TEST_F(DocumentTest, SetImageAtHandsTheOldImageBack) {
    CTavixImage* b = doc.GetImageAt(1);
    std::unique_ptr<CTavixImage> taken(doc.SetImageAt(1, named("y")));
    EXPECT_EQ(taken.get(), b);
    EXPECT_EQ(names(doc), "ayc");
    EXPECT_TRUE(doc.IsModified());
    std::unique_ptr<CTavixImage> refused(named("z"));
    EXPECT_EQ(doc.SetImageAt(3, refused.get()), refused.get());
    EXPECT_EQ(doc.GetImageAt(3), nullptr);
    EXPECT_EQ(doc.GetImageAt(-1), nullptr);
}

TEST_F(DocumentTest, RemoveAndSetImages) {
    doc.GetSelectionModel().Select(2);
    doc.RemoveImage(0);
    doc.RemoveImage(5);
    EXPECT_EQ(names(doc), "bc");
    CRange mask;
    doc.GetSelectionMask(mask);
    EXPECT_EQ(bits(mask), "01"); // the mark moved with its image

    CTavixImage* swapped[] = {doc.GetImageAt(1), doc.GetImageAt(0), named("d")};
    doc.SetModifiedFlag(false);
    doc.SetImages(3, swapped, true);
    EXPECT_EQ(names(doc), "cbd");
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(view.hints, std::vector<std::string>{"all"});
}

TEST_F(DocumentTest, FocusAndSelectionMasks) {
    CTavixDoc empty;
    EXPECT_EQ(empty.GetFocusIndex(), 0);
    EXPECT_EQ(empty.GetFocusImage(), nullptr);
    CRange mask;
    empty.GetSelectionMask(mask);
    EXPECT_EQ(mask.GetSize(), 0);

    // Nothing selected: the focused image counts as selected.
    doc.GetSelectionModel().SetFocus(2);
    doc.GetSelectionMask(mask);
    EXPECT_EQ(bits(mask), "001");
    EXPECT_EQ(doc.GetFocusImage(), doc.GetImageAt(2));
    doc.GetSelectionModel().Select(0);
    doc.GetSelectionMask(mask);
    EXPECT_EQ(bits(mask), "100");

    doc.SetFocus(1, true);
    EXPECT_EQ(view.hints.back(), "focus 1");
    doc.RemoveImage(2);
    doc.RemoveImage(1);
    EXPECT_EQ(doc.GetFocusIndex(), 0);
}

TEST_F(DocumentTest, WorksheetMaskFollowsTheSelection) {
    doc.GetSelectionModel().Select(0);
    doc.GetSelectionModel().Select(2);
    doc.AddSelectedToWorksheet();
    CRange mask;
    doc.GetWorksheetMask(mask);
    EXPECT_EQ(bits(mask), "101");
    doc.GetSelectionModel().Select(0, false);
    doc.RemoveSelectedFromWorksheet();
    doc.GetWorksheetMask(mask);
    EXPECT_EQ(bits(mask), "100");
    EXPECT_EQ(view.hints, (std::vector<std::string>{"all", "all"}));
}

TEST_F(DocumentTest, HintsReachEveryViewButTheSender) {
    RecordingView other;
    doc.AddView(&other);
    doc.AddView(&other);
    CModifiedHint one(1, 3);
    doc.UpdateAllViews(&view, 0, &one);
    EXPECT_TRUE(view.hints.empty());
    EXPECT_EQ(other.hints, std::vector<std::string>{"modified 010"});
    EXPECT_EQ(one.m_Flag, 0);
    doc.RemoveView(&other);
    CStateHint state;
    COptionsChangedHint options;
    CDeleteHint removed(one.m_Range);
    CInsertHint inserted(2, 4);
    for (CObject* hint : std::initializer_list<CObject*>{&state, &options, &removed, &inserted})
        doc.UpdateAllViews(nullptr, 0, hint);
    EXPECT_EQ(view.hints,
              (std::vector<std::string>{"state", "options", "delete 010", "insert 2 4"}));
    EXPECT_EQ(other.hints.size(), 1u);
    EXPECT_EQ(state.m_State, 0);
    EXPECT_THROW(CModifiedHint(3, 3), CInvalidArgException);
    EXPECT_THROW(CModifiedHint(-1, 3), CInvalidArgException);
}

namespace {

class CountingCmd : public CCommand {
  public:
    explicit CountingCmd(int* live, bool modifies) : m_live(live) {
        ++*m_live;
        m_bMarksModified = modifies;
    }
    ~CountingCmd() override { --*m_live; }
    void Do() override { ++runs; }
    int runs = 0;

  private:
    int* m_live;
};

} // namespace

TEST_F(DocumentTest, ExecuteAndKeepKeepsOnlyTheLatestCommand) {
    int live = 0;
    doc.SetModifiedFlag(false);
    auto* first = new CountingCmd(&live, false);
    doc.ExecuteAndKeep(first);
    EXPECT_EQ(first->runs, 1);
    EXPECT_FALSE(doc.IsModified());
    auto* second = new CountingCmd(&live, true);
    doc.ExecuteAndKeep(second);
    EXPECT_EQ(live, 1);
    EXPECT_EQ(doc.GetKeptCommand(), second);
    EXPECT_TRUE(doc.IsModified());
}
