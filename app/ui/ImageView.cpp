#include "app/ui/ImageView.h"

#include "app/cmds/NudgeImagesCmd.h"
#include "app/cmds/ShapePropertiesCmd.h"

#include "app/doc/Hints.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "app/ui/CaptionStrip.h"
#include "app/doc/CommandIds.h"
#include "app/ui/ImageListFormat.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>
#include <cstdio>

using namespace ZyIds;

namespace {

constexpr int kAnimationSteps = 30;
constexpr int kAnimationWaitMs = 10;

// Channel commands and their mask bits, for the view and the write masks.
struct ChannelCommand {
    unsigned viewId;
    unsigned writeId;
    uint32_t bits;
};

constexpr ChannelCommand kChannels[] = {
    {ViewAlpha, WriteAlpha, kChannelAlpha}, {ViewRed, WriteRed, kChannelRed},
    {ViewGreen, WriteGreen, kChannelGreen}, {ViewBlue, WriteBlue, kChannelBlue},
    {ViewRGB, WriteRGB, kChannelRGB},
};

QRect toQRect(const CRect& r) {
    return QRect(r.left, r.top, r.Width(), r.Height());
}

} // namespace

std::string ZoomPaneText(double zoom) {
    char text[32];
    if (zoom <= 1.0)
        snprintf(text, sizeof text, "1:%d", static_cast<int>(1.0 / zoom));
    else
        snprintf(text, sizeof text, "%d:1", static_cast<int>(zoom));
    return text;
}

CImageView::CImageView(CTavixDoc* doc, QWidget* parent)
    : QAbstractScrollArea(parent), m_Doc(doc),
      m_Highlight(static_cast<size_t>(kHighlightEntries), 0) {
    m_Caption = new TCaptionStrip("Worksheet", kCaptionHeight, this);
    m_Settings.Load(ZyProfile());
    if (m_Settings.m_RestoreZF) {
        const double restored = m_Settings.m_ZF / 16.0;
        if (restored >= kMinZoom && restored <= kMaxZoom) m_Zoom = restored;
    }
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAttribute(Qt::WA_NoSystemBackground);
    horizontalScrollBar()->setSingleStep(16);
    verticalScrollBar()->setSingleStep(16);
    m_Doc->AddView(this);
    // The pointer becomes a cross hair while the colour picker is armed.
    auto showPicking = [this](bool armed) {
        if (armed)
            viewport()->setCursor(Qt::CrossCursor);
        else
            viewport()->unsetCursor();
    };
    connect(&ZyColourPicker(), &CColourPicker::ArmedChanged, this, showPicking);
    showPicking(ZyColourPicker().IsArmed());
    // A new view applies its zoom once (with the animation, when shown).
    SetZoom(m_Zoom);
}

CImageView::~CImageView() {
    m_Doc->RemoveView(this);
    m_Settings.m_ZF = static_cast<int>(m_Zoom * 16);
    m_Settings.Save(ZyProfile());
}

// ---- Painting ------------------------------------------------------------------------

QPoint CImageView::ScrollPosition() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

CSheetScene CImageView::BuildScene() const {
    CSheetScene scene;
    const int count = m_Doc->GetImageCount();
    const CSelectionModel& selection = m_Doc->GetSelectionModel();
    scene.images.reserve(static_cast<size_t>(count));
    scene.selected.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        scene.images.push_back(CSheetImage::Of(*m_Doc->GetImageAt(i), m_Settings.m_PointsVisible));
        scene.selected[static_cast<size_t>(i)] = selection.IsSelected(i) ? 1 : 0;
    }
    scene.focus = count > 0 ? m_Doc->GetFocusIndex() : -1;
    scene.selectionEdges = m_SelectionEdges;
    scene.highlight = &m_Highlight;
    return scene;
}

void CImageView::PaintInto(const CRect& area) {
    if (!m_Buffer.Place(area)) return;
    PaintWorksheet(m_Buffer, BuildScene(), m_Settings, m_Zoom, kWorksheetSize);
}

QImage CImageView::RenderArea(const QRect& area) {
    PaintInto({area.left(), area.top(), area.left() + area.width(), area.top() + area.height()});
    const CDIB& bitmap = m_Buffer.Bitmap();
    if (!bitmap.IsValid()) return {};
    return QImage(bitmap.GetBits(), bitmap.GetWidth(), bitmap.GetHeight(), bitmap.GetPitch(),
                  QImage::Format_ARGB32)
        .copy();
}

void CImageView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    if (!m_AnimationFrame.isNull()) {
        // A zoom animation runs: the last frame with the moving rectangle,
        // drawn inverted.
        painter.drawPixmap(0, 0, m_AnimationFrame);
        if (m_AnimationRect.isValid()) {
            painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
            painter.setPen(QPen(Qt::white, 1, Qt::DotLine));
            painter.drawRect(m_AnimationRect);
        }
        return;
    }
    const QRect clip = event->rect();
    if (clip.isEmpty()) return;
    const QPoint scroll = ScrollPosition();
    PaintInto({clip.left() + scroll.x(), clip.top() + scroll.y(), clip.right() + 1 + scroll.x(),
               clip.bottom() + 1 + scroll.y()});
    const CDIB& bitmap = m_Buffer.Bitmap();
    if (!bitmap.IsValid()) return;
    // The buffer's own memory, shown without a copy; its alpha means nothing
    // on screen.
    const QImage frame(bitmap.GetBits(), bitmap.GetWidth(), bitmap.GetHeight(), bitmap.GetPitch(),
                       QImage::Format_RGB32);
    painter.drawImage(clip.topLeft(), frame);
    DrawDragOverlay(painter);
}

void CImageView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrollSizes();
}

void CImageView::scrollContentsBy(int, int) {
    viewport()->update();
}

void CImageView::UpdateScrollSizes() {
    const int width = static_cast<int>(kWorksheetSize.cx * m_Zoom);
    const int height = static_cast<int>(kWorksheetSize.cy * m_Zoom);
    const QSize page = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, width - page.width()));
    verticalScrollBar()->setRange(0, std::max(0, height - page.height()));
    horizontalScrollBar()->setPageStep(page.width());
    verticalScrollBar()->setPageStep(page.height());
}

void CImageView::Invalidate(const QRect& viewRect) {
    const QRect local = viewRect.translated(-ScrollPosition()).intersected(viewport()->rect());
    if (local.isEmpty()) return;
    m_LastInvalidated += local;
    viewport()->update(local);
}

void CImageView::InvalidateAll() {
    m_LastInvalidated = viewport()->rect();
    viewport()->update();
}

// ---- Zoom ------------------------------------------------------------------------------

bool CImageView::ZoomAnimationWanted() const {
    return ZyProfile().GetInt(kImageViewSection, "m_bAnimateZoom", 1) != 0 && isVisible() &&
           viewport()->width() > 8 && viewport()->height() > 8;
}

void CImageView::AnimateZoom(bool inward) {
    if (!ZoomAnimationWanted()) return;
    ++m_AnimationCount;
    const QRect client = viewport()->rect();
    const int qx = client.width() / 4, qy = client.height() / 4;
    QRectF rect = QRectF(client).adjusted(qx, qy, -qx, -qy);
    const double stepX = qx / double(kAnimationSteps), stepY = qy / double(kAnimationSteps);
    m_AnimationFrame = viewport()->grab();
    if (inward) rect.adjust(qx, qy, -qx, -qy);
    for (int i = 0; i < kAnimationSteps; ++i) {
        m_AnimationRect = rect.toRect();
        viewport()->repaint();
        QThread::msleep(kAnimationWaitMs);
        if (inward)
            rect.adjust(-stepX, -stepY, stepX, stepY);
        else
            rect.adjust(stepX, stepY, -stepX, -stepY);
    }
    m_AnimationFrame = QPixmap();
    m_AnimationRect = QRect();
    viewport()->update();
}

bool CImageView::SetZoom(double zoom) {
    if (zoom <= m_Zoom && m_Zoom <= kMinZoom) return false;
    if (zoom > m_Zoom && m_Zoom >= kMaxZoom) return false;
    const bool inward = zoom > m_Zoom;
    m_Zoom = zoom;
    if (m_ZoomAnimation) AnimateZoom(inward);
    UpdateScrollSizes();
    InvalidateAll();
    return true;
}

void CImageView::KeepFocusInView() {
    const int focus = m_Doc->GetFocusIndex();
    if (focus < 0 || focus >= m_Doc->GetImageCount()) return;
    const QRect image = toQRect(SheetImageRect(CSheetImage::Of(*m_Doc->GetImageAt(focus), false),
                                               m_Settings.m_ViewMode, m_Zoom));
    const QSize page = viewport()->size();
    const QRect visible(ScrollPosition(), page);
    if (image.isEmpty() || page.isEmpty() || visible.contains(image)) return;
    const bool fits = image.width() <= page.width() && image.height() <= page.height();
    // A large image partly in view stays where the zoom put it.
    if (!fits && visible.intersects(image)) return;
    auto start = [](int from, int length, int pageLength, int current) {
        if (length > pageLength) return from;
        if (from < current) return from;
        if (from + length > current + pageLength) return from + length - pageLength;
        return current;
    };
    horizontalScrollBar()->setValue(
        start(image.left(), image.width(), page.width(), visible.left()));
    verticalScrollBar()->setValue(start(image.top(), image.height(), page.height(), visible.top()));
    InvalidateAll();
}

void CImageView::ZoomIn(bool toOrigin) {
    if (m_Doc->GetImageCount() < 1 || m_Zoom >= kMaxZoom) return;
    const int cx = viewport()->width() / 2, cy = viewport()->height() / 2;
    const QPoint s = ScrollPosition();
    m_ZoomAnimation = false;
    AnimateZoom(true);
    SetZoom(m_Zoom * 2);
    if (toOrigin) {
        horizontalScrollBar()->setValue(0);
        verticalScrollBar()->setValue(0);
    } else {
        horizontalScrollBar()->setValue(2 * (s.x() + cx) - cx);
        verticalScrollBar()->setValue(2 * (s.y() + cy) - cy);
        KeepFocusInView();
    }
    InvalidateAll();
    m_ZoomAnimation = true;
}

void CImageView::ZoomOut() {
    if (m_Doc->GetImageCount() < 1 || m_Zoom <= kMinZoom) return;
    const int cx = viewport()->width() / 2, cy = viewport()->height() / 2;
    const QPoint s = ScrollPosition();
    m_ZoomAnimation = false;
    AnimateZoom(false);
    SetZoom(m_Zoom / 2);
    horizontalScrollBar()->setValue((s.x() + cx) / 2 - cx);
    verticalScrollBar()->setValue((s.y() + cy) / 2 - cy);
    KeepFocusInView();
    InvalidateAll();
    m_ZoomAnimation = true;
}

void CImageView::wheelEvent(QWheelEvent* event) {
    if (event->angleDelta().y() > 0)
        ZoomIn(event->modifiers() & Qt::ShiftModifier);
    else
        ZoomOut();
    event->accept();
}

// ---- Mouse and panes -------------------------------------------------------------------------

void CImageView::mouseMoveEvent(QMouseEvent* event) {
    m_Mouse = event->position().toPoint();
    emit PixelInfoChanged(PixelInfoText());
    if (m_Drag != NoDrag) {
        m_CurrentWs = ToWorksheet(m_Mouse);
        viewport()->update();
    }
    QAbstractScrollArea::mouseMoveEvent(event);
}

void CImageView::leaveEvent(QEvent* event) {
    m_Mouse = {-1, -1};
    emit PixelInfoChanged({});
    QAbstractScrollArea::leaveEvent(event);
}

void CImageView::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    if (event->button() != Qt::LeftButton || m_Doc->GetImageCount() == 0) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const QPoint ws = ToWorksheet(event->position().toPoint());
    if (ZyColourPicker().IsArmed()) {
        // Picking takes the colour and leaves selection and images alone.
        const CPickedPixel pixel = PixelAt(ws);
        if (pixel.m_Valid) ZyColourPicker().Pick(pixel);
        return;
    }
    m_PressWs = m_CurrentWs = ws;
    CSelectionModel& selection = m_Doc->GetSelectionModel();
    const Qt::KeyboardModifiers mods = event->modifiers();
    const bool extend = mods & (Qt::ControlModifier | Qt::ShiftModifier);
    // With points shown, the focused image's centre marker can be dragged.
    const int focus = m_Doc->GetFocusIndex();
    if (m_Settings.m_PointsVisible && !extend) {
        const CTavixImage* image = m_Doc->GetImageAt(focus);
        if (image) {
            const CPoint at = image->GetDefaultPoint(), centre = image->GetCenterPoint();
            const QPoint marker = FromWorksheet({at.x + centre.x, at.y + centre.y});
            if ((marker - event->position().toPoint()).manhattanLength() <= 4) {
                m_Drag = CentreDrag;
                m_CentreImage = focus;
                return;
            }
        }
    }
    const int hit = HitTest(ws);
    if (hit >= 0) {
        if (mods & Qt::ControlModifier)
            selection.Select(hit, !selection.IsSelected(hit));
        else if (mods & Qt::ShiftModifier)
            selection.Select(hit);
        else if (!selection.IsSelected(hit)) {
            selection.SelectAll(false);
            selection.Select(hit);
        }
        m_Doc->SetFocus(hit, false);
        m_Drag = selection.IsSelected(hit) ? MoveDrag : NoDrag;
    } else {
        if (!extend) selection.SelectAll(false);
        m_Drag = BandDrag;
    }
    m_Doc->UpdateAllViews(nullptr);
}

void CImageView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || m_Drag == NoDrag) {
        QAbstractScrollArea::mouseReleaseEvent(event);
        return;
    }
    const DragMode mode = m_Drag;
    m_Drag = NoDrag;
    m_CurrentWs = ToWorksheet(event->position().toPoint());
    const QPoint delta = m_CurrentWs - m_PressWs;
    viewport()->update();
    if (mode == MoveDrag) {
        if (!delta.isNull()) MoveSelected(delta.x(), delta.y());
    } else if (mode == CentreDrag) {
        CTavixImage* image = m_Doc->GetImageAt(m_CentreImage);
        if (!image || delta.isNull()) return;
        CShapeEdit edit;
        const CPoint at = image->GetDefaultPoint();
        edit.m_CenterX = m_CurrentWs.x() - at.x;
        edit.m_CenterY = m_CurrentWs.y() - at.y;
        CRange target(m_Doc->GetImageCount());
        target.SetAt(m_CentreImage, 1);
        auto* cmd = new CShapePropertiesCmd;
        cmd->PresetEdit(edit);
        cmd->PresetTargets(target);
        m_Doc->GetCommandHandler().Start(cmd);
    } else if (mode == BandDrag) {
        const QRect band = QRect(m_PressWs, m_CurrentWs).normalized();
        CSelectionModel& selection = m_Doc->GetSelectionModel();
        int first = -1;
        for (int i = 0; i < m_Doc->GetImageCount(); ++i) {
            const CRect r = m_Doc->GetImageAt(i)->GetPlacementRect();
            if (band.intersects(QRect(r.left, r.top, r.Width(), r.Height()))) {
                selection.Select(i);
                if (first < 0) first = i;
            }
        }
        if (first >= 0) m_Doc->SetFocus(first, false);
        m_Doc->UpdateAllViews(nullptr);
    }
}

void CImageView::keyPressEvent(QKeyEvent* event) {
    const int step = (event->modifiers() & Qt::ShiftModifier) ? 8 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        MoveSelected(-step, 0);
        return;
    case Qt::Key_Right:
        MoveSelected(step, 0);
        return;
    case Qt::Key_Up:
        MoveSelected(0, -step);
        return;
    case Qt::Key_Down:
        MoveSelected(0, step);
        return;
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

QPoint CImageView::ToWorksheet(const QPoint& pos) const {
    const QPoint s = ScrollPosition();
    return {static_cast<int>(std::floor((pos.x() + s.x()) / m_Zoom)),
            static_cast<int>(std::floor((pos.y() + s.y()) / m_Zoom))};
}

QPoint CImageView::FromWorksheet(const QPoint& ws) const {
    const QPoint s = ScrollPosition();
    return {static_cast<int>(std::floor(ws.x() * m_Zoom)) - s.x(),
            static_cast<int>(std::floor(ws.y() * m_Zoom)) - s.y()};
}

int CImageView::HitTest(const QPoint& ws) const {
    // The first image of the list is drawn on top; shown images (selected
    // or focused) come before hidden ones.
    int hidden = -1;
    const int focus = m_Doc->GetFocusIndex();
    for (int i = 0; i < m_Doc->GetImageCount(); ++i) {
        const CRect r = m_Doc->GetImageAt(i)->GetPlacementRect();
        if (ws.x() < r.left || ws.x() >= r.right || ws.y() < r.top || ws.y() >= r.bottom) continue;
        if (m_Doc->GetSelectionModel().IsSelected(i) || i == focus) return i;
        if (hidden < 0) hidden = i;
    }
    return hidden;
}

void CImageView::MoveSelected(int dx, int dy) {
    if (m_Doc->GetImageCount() == 0 || (dx == 0 && dy == 0)) return;
    m_Doc->GetCommandHandler().Start(new CNudgeImagesCmd(dx, dy));
    InvalidateAll();
}

QRect CImageView::SelectionBounds() const {
    CRange mask;
    m_Doc->GetSelectionMask(mask);
    QRect bounds;
    for (int i = 0; i < mask.GetSize(); ++i) {
        if (!mask.IsSelected(i)) continue;
        const CRect r = m_Doc->GetImageAt(i)->GetPlacementRect();
        bounds |= QRect(r.left, r.top, std::max(1, r.Width()), std::max(1, r.Height()));
    }
    return bounds;
}

void CImageView::ShowSelection(bool fit) {
    const QRect bounds = SelectionBounds();
    if (bounds.isEmpty()) return;
    const QSize page = viewport()->size();
    if (fit) {
        // The largest zoom step (a power of two) at which the selection fits.
        double zoom = kMaxZoom;
        while (zoom > kMinZoom &&
               (bounds.width() * zoom > page.width() || bounds.height() * zoom > page.height()))
            zoom /= 2;
        if (zoom != m_Zoom) {
            const bool animate = m_ZoomAnimation;
            m_ZoomAnimation = false;
            SetZoom(zoom);
            m_ZoomAnimation = animate;
        }
    }
    const QPoint centre((bounds.left() + bounds.right() + 1) * m_Zoom / 2,
                        (bounds.top() + bounds.bottom() + 1) * m_Zoom / 2);
    horizontalScrollBar()->setValue(centre.x() - page.width() / 2);
    verticalScrollBar()->setValue(centre.y() - page.height() / 2);
    InvalidateAll();
}

void CImageView::DrawDragOverlay(QPainter& painter) const {
    if (m_Drag == NoDrag) return;
    painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    const QPoint delta = m_CurrentWs - m_PressWs;
    if (m_Drag == BandDrag) {
        painter.drawRect(QRect(FromWorksheet(m_PressWs), FromWorksheet(m_CurrentWs)).normalized());
    } else if (m_Drag == MoveDrag) {
        for (int i = 0; i < m_Doc->GetImageCount(); ++i) {
            if (!m_Doc->GetSelectionModel().IsSelected(i)) continue;
            const CRect r = m_Doc->GetImageAt(i)->GetPlacementRect();
            painter.drawRect(
                QRect(FromWorksheet(QPoint(r.left, r.top) + delta),
                      FromWorksheet(QPoint(r.right, r.bottom) + delta) - QPoint(1, 1)));
        }
    } else {
        const QPoint at = FromWorksheet(m_CurrentWs);
        painter.drawLine(at - QPoint(5, 0), at + QPoint(5, 0));
        painter.drawLine(at - QPoint(0, 5), at + QPoint(0, 5));
    }
}

void CImageView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    if (m_Shown) return;
    m_Shown = true;
    // A new view applies its zoom once more when it first appears, so that
    // the zoom animation plays where it can be seen.
    QTimer::singleShot(0, this, [this] { SetZoom(m_Zoom); });
}

void CImageView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    emit Activated();
}

std::string CImageView::PositionPaneText() const {
    // Only while the pointer is over this window's own active top level.
    if (m_Mouse.x() < 0 || (window()->isVisible() && !isActiveWindow())) return {};
    const QPoint s = ScrollPosition();
    const int x = static_cast<int>(std::floor((m_Mouse.x() + s.x()) / m_Zoom));
    const int y = static_cast<int>(std::floor((m_Mouse.y() + s.y()) / m_Zoom));
    char text[32];
    snprintf(text, sizeof text, "%d,%d", x, y);
    return text;
}

CPickedPixel CImageView::PixelAt(const QPoint& ws) const {
    CPickedPixel pixel;
    if (m_Doc->GetImageCount() == 0) return pixel;
    const CSheetScene scene = BuildScene();
    const std::vector<int> order = DrawingOrder(scene, m_Settings);
    // The last image drawn is the one on top.
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        const CTavixImage* image = m_Doc->GetImageAt(*it);
        const int d = VramDivisor(m_Settings.m_ViewMode, image->GetBpp());
        const CPoint at = image->GetDefaultPoint();
        const int units = (image->GetWidth() + d - 1) / d;
        if (ws.x() < at.x || ws.y() < at.y || ws.x() >= at.x + units ||
            ws.y() >= at.y + image->GetHeight())
            continue;
        pixel.m_Valid = true;
        pixel.m_Image = *it;
        pixel.m_X = std::min((ws.x() - at.x) * d, image->GetWidth() - 1);
        pixel.m_Y = ws.y() - at.y;
        pixel.m_Index = image->GetBitCount() <= 8 ? image->GetIndex(pixel.m_X, pixel.m_Y) : -1;
        pixel.m_Argb = image->GetPixelValue(pixel.m_X, pixel.m_Y);
        pixel.m_Name = QString::fromStdString(ImageCellText(*image, *it, 0));
        return pixel;
    }
    return pixel;
}

QString CImageView::PixelInfoText() const {
    if (m_Mouse.x() < 0) return {};
    return PixelAt(ToWorksheet(m_Mouse)).Text();
}

// ---- Updates ------------------------------------------------------------------------------------

void CImageView::OnUpdate(CView*, long, CObject* hint) {
    m_LastInvalidated = QRegion();
    if (auto* modified = dynamic_cast<CModifiedHint*>(hint)) {
        // Points and hot spots may lie outside their images: with them on,
        // repaint everything.
        if (modified->m_Flag || m_Settings.m_PointsVisible) {
            InvalidateAll();
            return;
        }
        const int count = m_Doc->GetImageCount();
        for (int i = 0; i < modified->m_Range.GetSize() && i < count; ++i) {
            if (!modified->m_Range.IsSelected(i)) continue;
            const CSheetImage image = CSheetImage::Of(*m_Doc->GetImageAt(i), false);
            // One pixel more on each side for the selection edge.
            Invalidate(toQRect(SheetImageRect(image, m_Settings.m_ViewMode, m_Zoom))
                           .adjusted(-1, -1, 1, 1));
        }
        return;
    }
    if (dynamic_cast<COptionsChangedHint*>(hint)) m_Settings.ReloadOptions(ZyProfile());
    UpdateScrollSizes();
    InvalidateAll();
}

// ---- Commands
// ------------------------------------------------------------------------------------

void CImageView::SaveSetting(const char* name, int value) {
    ZyProfile().WriteInt(kImageViewSection, name, value);
}

void CImageView::SetHighlight(int entry) {
    std::fill(m_Highlight.begin(), m_Highlight.end(), 0);
    if (entry >= 0 && entry < kHighlightEntries) m_Highlight[static_cast<size_t>(entry)] = 1;
    InvalidateAll();
}

bool CImageView::OnCmdMsg(unsigned id) {
    CImageViewSettings& s = m_Settings;
    for (const ChannelCommand& channel : kChannels) {
        if (id == channel.viewId) {
            s.m_ChannelViewMask = ToggleChannel(s.m_ChannelViewMask, channel.bits);
            InvalidateAll();
            return true;
        }
        if (id == channel.writeId) {
            s.m_ChannelWriteMask = ToggleChannel(s.m_ChannelWriteMask, channel.bits);
            return true;
        }
    }
    if (id >= Highlight0 && id <= HighlightLast) {
        SetHighlight(static_cast<int>(id - Highlight0));
        return true;
    }
    switch (id) {
    case ViewZoomIn:
        ZoomIn(QApplication::keyboardModifiers() & Qt::ShiftModifier);
        return true;
    case ViewZoomOut:
        ZoomOut();
        return true;
    case ViewZoomNormal:
        SetZoom(1.0);
        KeepFocusInView();
        return true;
    case ViewZoomToFit:
    case ViewGoToSelected:
        ShowSelection(id == ViewZoomToFit);
        return true;
    case CheckerLarger:
    case CheckerSmaller:
        s.m_CheckerSize = std::clamp(s.m_CheckerSize + (id == CheckerLarger ? 1 : -1), 1, 8);
        SaveSetting("m_CheckerSize", s.m_CheckerSize);
        InvalidateAll();
        return true;
    case GridLarger:
        if (s.m_GridSize < 128) s.m_GridSize *= 2;
        SaveSetting("m_GridSize", s.m_GridSize);
        InvalidateAll();
        return true;
    case GridSmaller:
        if (s.m_GridSize > 4) s.m_GridSize /= 2;
        SaveSetting("m_GridSize", s.m_GridSize);
        InvalidateAll();
        return true;
    case ViewGrid:
        s.m_GridVisible = !s.m_GridVisible;
        InvalidateAll();
        return true;
    case OverlapWarning:
        s.m_DrawOverlapWarning = !s.m_DrawOverlapWarning;
        InvalidateAll();
        return true;
    case VramView:
        s.m_ViewMode = s.m_ViewMode == 1 ? 0 : 1;
        InvalidateAll();
        return true;
    case ViewPoints:
        s.m_PointsVisible = !s.m_PointsVisible;
        InvalidateAll();
        return true;
    case ViewSelectionEdges:
        m_SelectionEdges = !m_SelectionEdges;
        InvalidateAll();
        return true;
    case ShowFocusedImage:
        s.m_IsActiveVisible = !s.m_IsActiveVisible;
        InvalidateAll();
        return true;
    case FocusedImageTopmost:
        s.m_IsActiveTopMost = !s.m_IsActiveTopMost;
        InvalidateAll();
        return true;
    case ClearHighlight:
        SetHighlight(-1);
        return true;
    case RefreshViews:
        m_Doc->UpdateAllViews(nullptr);
        return true;
    default:
        return false;
    }
}

bool CImageView::OnUpdateCmdUI(CUiCmdUI& ui) {
    const unsigned id = ui.m_nID;
    const CImageViewSettings& s = m_Settings;
    for (const ChannelCommand& channel : kChannels) {
        if (id == channel.viewId) {
            ui.Enable();
            ui.SetCheck((s.m_ChannelViewMask & channel.bits) != 0);
            return true;
        }
        if (id == channel.writeId) {
            ui.Enable();
            return true;
        }
    }
    if (id >= Highlight0 && id <= HighlightLast) {
        ui.Enable();
        return true;
    }
    switch (id) {
    case ViewZoomIn:
    case ViewZoomOut:
        ui.Enable(m_Doc->GetImageCount() > 0);
        return true;
    case GridLarger:
        ui.Enable(s.m_GridSize < 128);
        return true;
    case GridSmaller:
        ui.Enable(s.m_GridSize >= 5);
        return true;
    case ViewGrid:
        ui.Enable();
        ui.SetCheck(s.m_GridVisible);
        return true;
    case OverlapWarning:
        ui.Enable();
        ui.SetCheck(s.m_DrawOverlapWarning);
        return true;
    case VramView:
        ui.Enable();
        ui.SetCheck(s.m_ViewMode == 1);
        return true;
    case ViewPoints:
        ui.Enable();
        ui.SetCheck(s.m_PointsVisible);
        return true;
    case ViewSelectionEdges:
        ui.Enable();
        ui.SetCheck(m_SelectionEdges);
        return true;
    case ViewZoomNormal:
    case ViewZoomToFit:
    case ViewGoToSelected:
    case CheckerLarger:
    case CheckerSmaller:
    case ShowFocusedImage:
    case FocusedImageTopmost:
    case ClearHighlight:
    case RefreshViews:
        ui.Enable();
        return true;
    default:
        return false;
    }
}
