#pragma once
// The update hints a document sends to its views through UpdateAllViews.
// Each names what changed so that a view can repaint only that.

#include "app/doc/CRange.h"
#include "mfx/Object.h"

#include <cstdint>

// Images were inserted: `m_Count` of them starting at position `m_First`.
class CInsertHint : public CObject {
  public:
    CInsertHint(int first, int count) : m_First(first), m_Count(count) {}
    int m_First;
    int m_Count;
};

// Images were deleted; the mask (1 = deleted) is by their positions before
// the deletion.
class CDeleteHint : public CObject {
  public:
    explicit CDeleteHint(const CRange& mask) : m_Mask(mask) {}
    CRange m_Mask;
};

// Image contents or attributes changed at the positions set in the range.
class CModifiedHint : public CObject {
  public:
    CModifiedHint() = default;
    explicit CModifiedHint(const CRange& range) : m_Range(range) {}
    // One changed image: a mask of `count` entries with only `index` set.
    // An index outside 0..count-1 throws CInvalidArgException.
    CModifiedHint(int index, int count);

    CRange m_Range;
    // 0 unless the sender sets it. A sender sets 1 when only attributes
    // changed (no pixel), so views may skip rebuilding their bitmaps.
    uint8_t m_Flag = 0;
};

// A change of view state that needs no image redraw.
class CStateHint : public CObject {
  public:
    int m_State = 0;
};

// The focused image changed.
class CFocusChangedHint : public CObject {
  public:
    explicit CFocusChangedHint(int index) : m_Index(index) {}
    int m_Index;
};

// The options were applied.
class COptionsChangedHint : public CObject {};
