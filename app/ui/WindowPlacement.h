#pragma once
// Window placements kept in the profile: ten integers in the window's own
// section ("Main Window", ...). A first start keeps the system's placement,
// because reading takes the window's current values as defaults; a window
// closed minimised or maximised is not written, so it reopens where it last
// stood as a normal window.

#include <string>

class CProfile;
class QWidget;

struct CWindowPlacement {
    enum ShowCmd { Hidden = 0, Normal = 1, Minimized = 2, Maximized = 3 };
    int showCmd = Normal;
    int flags = 0;
    int minX = -1, minY = -1;
    int maxX = -1, maxY = -1;
    int left = 0, right = 0, top = 0, bottom = 0;

    friend bool operator==(const CWindowPlacement&, const CWindowPlacement&) = default;
};

// The stored placement, each value defaulting to `current`'s.
CWindowPlacement ReadWindowPlacement(const CProfile& profile, const std::string& section,
                                     const CWindowPlacement& current);
// Writes `placement` unless it is minimised or maximised; true when written.
bool WriteWindowPlacement(CProfile& profile, const std::string& section,
                          const CWindowPlacement& placement);

// The placement of a top-level widget (its normal geometry and show state).
CWindowPlacement PlacementOf(const QWidget& window);
// Moves and sizes the widget, maximising it when the placement says so.
// Nothing is shown here.
void ApplyPlacement(QWidget& window, const CWindowPlacement& placement);
