#pragma once
// Small value types for positions and sizes on the worksheet.

struct CPoint {
    int x = 0;
    int y = 0;
    friend bool operator==(const CPoint&, const CPoint&) = default;
};

struct CSize {
    int cx = 0;
    int cy = 0;
    friend bool operator==(const CSize&, const CSize&) = default;
};

// Right and bottom are exclusive.
struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    friend bool operator==(const CRect&, const CRect&) = default;
};
