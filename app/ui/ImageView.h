#pragma once
// CImageView: the worksheet, the right-hand view of every document window.
// It paints the shown images (the selected ones and the focused one) at
// their worksheet positions over the checkerboard or the PSX VRAM board, at
// a zoom from 1/16 to 16, with channel masks, grid, points, selection edges
// and the overlap warning. Painting goes through the worksheet painting
// engine into one reused back buffer covering only the area to repaint.

#include "app/doc/View.h"
#include "app/ui/ColourPicker.h"
#include "app/ui/CommandTarget.h"
#include "app/ui/ImageViewSettings.h"
#include "app/ui/WorksheetPainter.h"

#include <QAbstractScrollArea>
#include <QPixmap>

#include <string>
#include <vector>

class CTavixDoc;
class TCaptionStrip;

// The worksheet's size in worksheet pixels.
constexpr CSize kWorksheetSize{2048, 2048};

// "1:%d" with the integer part of 1 / zoom up to 1.0, "%d:1" above.
std::string ZoomPaneText(double zoom);

class CImageView : public QAbstractScrollArea, public CView, public CCommandTarget {
    Q_OBJECT
  public:
    static constexpr double kMinZoom = 1.0 / 16;
    static constexpr double kMaxZoom = 16.0;
    static constexpr int kHighlightEntries = 1024;

    explicit CImageView(CTavixDoc* doc, QWidget* parent = nullptr);
    ~CImageView() override;

    CTavixDoc* GetDocument() const { return m_Doc; }
    TCaptionStrip* Caption() const { return m_Caption; }
    CImageViewSettings& Settings() { return m_Settings; }
    const CImageViewSettings& Settings() const { return m_Settings; }

    // CView
    void OnUpdate(CView* sender, long lHint, CObject* hint) override;
    // CCommandTarget
    bool OnCmdMsg(unsigned id) override;
    bool OnUpdateCmdUI(CUiCmdUI& ui) override;

    double GetZoom() const { return m_Zoom; }
    // False when refused: no smaller than 1/16 and no larger than 16, tested
    // on the current zoom.
    bool SetZoom(double zoom);
    void ZoomIn(bool toOrigin = false);
    void ZoomOut();
    // How many zoom animations ran (each is 30 steps of 10 ms).
    int ZoomAnimationCount() const { return m_AnimationCount; }

    bool SelectionEdges() const { return m_SelectionEdges; }
    const std::vector<uint8_t>& Highlight() const { return m_Highlight; }

    // Status-bar panes.
    std::string PositionPaneText() const;
    std::string ZoomPaneText() const { return ::ZoomPaneText(m_Zoom); }

    // Paints the worksheet area `area` (view pixels, scroll included) into
    // an image, exactly as a paint of that area would.
    QImage RenderArea(const QRect& area);
    // The part of the viewport an update hint invalidated last.
    QRegion LastInvalidated() const { return m_LastInvalidated; }

    // The pixel of the topmost shown image at worksheet pixel `ws`; not
    // valid over the background.
    CPickedPixel PixelAt(const QPoint& ws) const;
    // The pixel under the pointer as the status bar shows it ("Pixel 3,4 of
    // hero: index 17, ARGB FF102030"); empty when the pointer is not over
    // a shown image.
    QString PixelInfoText() const;

  signals:
    void Activated();
    // The pointer moved onto, over or off a pixel (the text as above).
    void PixelInfoChanged(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    CSheetScene BuildScene() const;
    void PaintInto(const CRect& area);
    void UpdateScrollSizes();
    // After a zoom: scrolls the focused image back into view when it left
    // it (all of it when it fits, its top-left part otherwise).
    void KeepFocusInView();
    void AnimateZoom(bool inward);
    bool ZoomAnimationWanted() const;
    void Invalidate(const QRect& viewRect);
    void InvalidateAll();
    void SaveSetting(const char* name, int value);
    void SetHighlight(int entry);
    QPoint ScrollPosition() const;

    CTavixDoc* m_Doc;
    TCaptionStrip* m_Caption;
    CImageViewSettings m_Settings;
    double m_Zoom = 1.0;
    bool m_ZoomAnimation = true;
    bool m_SelectionEdges = false;
    CBackBuffer m_Buffer;
    std::vector<uint8_t> m_Highlight;
    float m_LightX = 0, m_LightY = 0;
    // The zoom animation: the frame it runs over and its rectangle.
    QPixmap m_AnimationFrame;
    QRect m_AnimationRect;
    int m_AnimationCount = 0;
    bool m_Shown = false;
    QPoint m_Mouse{-1, -1};
    QRegion m_LastInvalidated;

    // ---- Editing by hand ----
  public:
    // The worksheet pixel under view point `pos` (scroll and zoom applied).
    QPoint ToWorksheet(const QPoint& pos) const;
    // The view point of worksheet pixel `ws` (its top-left corner).
    QPoint FromWorksheet(const QPoint& ws) const;
    // The image under worksheet pixel `ws`, the one drawn on top first; -1.
    int HitTest(const QPoint& ws) const;
    // Moves the selected images by (dx, dy) as one undoable command.
    void MoveSelected(int dx, int dy);
    // The selected images' placement, in worksheet pixels (empty for none).
    QRect SelectionBounds() const;
    // Scrolls the selection to the middle; with `fit`, zooms first to the
    // largest step at which it fits.
    void ShowSelection(bool fit);

  private:
    enum DragMode { NoDrag, MoveDrag, BandDrag, CentreDrag };
    void DrawDragOverlay(QPainter& painter) const;
    DragMode m_Drag = NoDrag;
    QPoint m_PressWs, m_CurrentWs;
    int m_CentreImage = -1;
};
