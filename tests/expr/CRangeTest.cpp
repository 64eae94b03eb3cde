#include "app/doc/CRange.h"

#include "app/doc/Exceptions.h"

#include <gtest/gtest.h>

TEST(CRange, GrowsWithZeroedEntriesAndCountsTheSet) {
    CRange range;
    EXPECT_EQ(range.GetSize(), 0);
    range.SetSize(5);
    for (int32_t i = 0; i < 5; ++i)
        EXPECT_EQ(range.GetAt(i), 0);
    range.SetAt(1, 1);
    range[3] = 7;
    EXPECT_EQ(range.Count(), 2);
    EXPECT_TRUE(range.IsSelected(3));

    // Shrinking and growing again must not bring back the old flags.
    range.SetSize(2);
    range.SetSize(1000);
    EXPECT_EQ(range.GetAt(1), 1);
    EXPECT_EQ(range.GetAt(3), 0);
    EXPECT_EQ(range.Count(), 1);

    range.Clear();
    EXPECT_EQ(range.GetSize(), 0);
    EXPECT_EQ(range.Count(), 0);
}

TEST(CRange, IndexOutsideTheSizeThrows) {
    CRange range(3);
    const CRange& constRange = range;
    for (int32_t bad : {-1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_THROW(range.GetAt(bad), CInvalidArgException) << bad;
        EXPECT_THROW(range.SetAt(bad, 1), CInvalidArgException) << bad;
        EXPECT_THROW(range[bad], CInvalidArgException) << bad;
        EXPECT_THROW((void)constRange[bad], CInvalidArgException) << bad;
    }
    EXPECT_THROW(range.SetSize(-1), CInvalidArgException);
    EXPECT_EQ(range.GetSize(), 3); // a failed resize changes nothing
    CRange empty;
    EXPECT_THROW(empty.GetAt(0), CInvalidArgException);
}

TEST(CRange, CopiesAreIndependentAndCompareBySelection) {
    CRange a(4);
    a.SetAt(2, 1);
    CRange b = a;
    b.SetAt(0, 1);
    EXPECT_EQ(a.Count(), 1);
    EXPECT_EQ(b.Count(), 2);
    EXPECT_FALSE(a == b);
    b.SetAt(0, 0);
    b.SetAt(2, 9); // any non-zero flag means "in the set"
    EXPECT_TRUE(a == b);

    CRange moved = std::move(b);
    EXPECT_EQ(moved.GetSize(), 4);
    EXPECT_EQ(b.GetSize(), 0);
    a = moved;
    a.SetAll(1);
    EXPECT_EQ(a.Count(), 4);
    EXPECT_EQ(moved.Count(), 1);
}
