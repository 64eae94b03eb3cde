#pragma once
// CChildFrame: the window of one document inside the main frame's MDI area,
// with the shape list on the left and the worksheet on the right. It owns
// its document. Commands reach it before the application: first the active
// child's views, then its document (whose command handler takes the
// families' IDs).

#include "app/ui/CommandTarget.h"

#include <QWidget>

#include <QStringList>

#include <memory>
#include <string>

class CImageListView;
class CImageView;
class CTavixDoc;
class QSplitter;

class CChildFrame : public QWidget, public CCommandTarget {
    Q_OBJECT
  public:
    explicit CChildFrame(std::unique_ptr<CTavixDoc> doc, QWidget* parent = nullptr);
    ~CChildFrame() override;

    CTavixDoc* GetDocument() const { return m_Doc.get(); }
    CImageListView* ListView() const { return m_ListView; }
    CImageView* ImageView() const { return m_ImageView; }

    // The four status-bar panes: index, size, position and zoom.
    struct PaneTexts {
        std::string index, size, position, zoom;
    };
    PaneTexts Panes() const;

    bool OnCmdMsg(unsigned id) override;
    bool OnUpdateCmdUI(CUiCmdUI& ui) override;

    // The document's title: its file name, or the name given to a new one.
    QString Title() const;
    void SetUntitledName(const QString& name) { m_UntitledName = name; }
    // Shows the title and the modified mark.
    void RefreshTitle();

    // Asks to save a modified document; false when the user cancelled.
    bool SaveModified();
    // Marks which view is the active one and the frame's own activation.
    void SetActiveView(QWidget* view);
    void SetFrameActive(bool active);
    QWidget* ActiveView() const { return m_ActiveView; }

    // Reads dropped files and inserts their images as one command.
    void InsertFiles(const QStringList& paths);

  signals:
    // The document got a new path (a save under another name).
    void PathChanged(const QString& path);
    // A view asked for the context menu at `globalPos`.
    void ContextMenuRequested(const QPoint& globalPos);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void RefreshCaptions();
    bool DocumentCommand(unsigned id);
    bool DocumentUpdate(CUiCmdUI& ui);

    std::unique_ptr<CTavixDoc> m_Doc;
    CImageListView* m_ListView;
    CImageView* m_ImageView;
    QSplitter* m_Splitter;
    QWidget* m_ActiveView;
    bool m_FrameActive = false;
    QString m_UntitledName = "Zy";
};
