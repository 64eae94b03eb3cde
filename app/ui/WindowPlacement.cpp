#include "app/ui/WindowPlacement.h"

#include "app/doc/Profile.h"

#include <QWidget>

namespace {

struct Field {
    const char* name;
    int CWindowPlacement::*member;
};

constexpr Field kFields[] = {
    {"wp.showCmd", &CWindowPlacement::showCmd},
    {"wp.flags", &CWindowPlacement::flags},
    {"wp.ptMinPosition.x", &CWindowPlacement::minX},
    {"wp.ptMinPosition.y", &CWindowPlacement::minY},
    {"wp.ptMaxPosition.x", &CWindowPlacement::maxX},
    {"wp.ptMaxPosition.y", &CWindowPlacement::maxY},
    {"wp.left", &CWindowPlacement::left},
    {"wp.right", &CWindowPlacement::right},
    {"wp.top", &CWindowPlacement::top},
    {"wp.bottom", &CWindowPlacement::bottom},
};

} // namespace

CWindowPlacement ReadWindowPlacement(const CProfile& profile, const std::string& section,
                                     const CWindowPlacement& current) {
    CWindowPlacement placement = current;
    for (const Field& f : kFields)
        placement.*f.member = profile.GetInt(section, f.name, current.*f.member);
    return placement;
}

bool WriteWindowPlacement(CProfile& profile, const std::string& section,
                          const CWindowPlacement& placement) {
    if (placement.showCmd == CWindowPlacement::Minimized ||
        placement.showCmd == CWindowPlacement::Maximized)
        return false;
    for (const Field& f : kFields)
        profile.WriteInt(section, f.name, placement.*f.member);
    return true;
}

CWindowPlacement PlacementOf(const QWidget& window) {
    CWindowPlacement p;
    if (window.isMinimized())
        p.showCmd = CWindowPlacement::Minimized;
    else if (window.isMaximized())
        p.showCmd = CWindowPlacement::Maximized;
    const QRect r =
        window.isMaximized() || window.isMinimized() ? window.normalGeometry() : window.geometry();
    p.left = r.left();
    p.top = r.top();
    p.right = r.left() + r.width();
    p.bottom = r.top() + r.height();
    return p;
}

void ApplyPlacement(QWidget& window, const CWindowPlacement& p) {
    if (p.right > p.left && p.bottom > p.top)
        window.setGeometry(p.left, p.top, p.right - p.left, p.bottom - p.top);
    if (p.showCmd == CWindowPlacement::Maximized)
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
}
