#pragma once
// The properties window (View > Properties, Tools > Shape Properties): the
// record of the active document's focused image, editable in place. Size
// and depth are shown only. Each finished change (a field left, a box
// ticked, a hot spot added) is one Shape Properties command over the
// selected images carrying only that field, so several images can be
// edited together without their other fields becoming alike, and Undo
// takes back exactly that change.

#include <QDockWidget>
#include <QString>

#include <cstdint>
#include <vector>

struct CShapeEdit;
class CTavixDoc;
class CTavixImage;
class QCheckBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTableWidget;

class CPropertiesDock : public QDockWidget {
    Q_OBJECT
  public:
    explicit CPropertiesDock(QWidget* parent = nullptr);

    // The document whose focused image is shown; null for none. Refresh
    // reloads the fields when the record changed since they were loaded.
    void SetDocument(CTavixDoc* doc);
    void Refresh();

    // The editors, for tests and scripted sessions.
    QLineEdit* NameEdit() const { return m_Name; }
    QLineEdit* CommentEdit() const { return m_Comment; }
    QSpinBox* CenterX() const { return m_CenterX; }
    QSpinBox* CenterY() const { return m_CenterY; }
    QSpinBox* DefaultX() const { return m_DefaultX; }
    QSpinBox* DefaultY() const { return m_DefaultY; }
    QTableWidget* HotSpots() const { return m_HotSpots; }
    QCheckBox* Attribute(int n) const { return m_Attr[n]; }
    QLabel* SizeLabel() const { return m_Size; }
    // Adds a hot spot (0,0) or removes the current row, as the buttons do.
    void AddHotSpot();
    void RemoveHotSpot();

  signals:
    void CommandRun();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // Whether `field` holds typing that was not entered yet.
    bool HasTyping(const QObject* field) const;
    void Load(const CTavixImage* image, int selected);
    void Submit(const CShapeEdit& edit);
    void CommitHotSpots();
    QSpinBox* MakeSpin(int low, int high);

    CTavixDoc* m_Doc = nullptr;
    const CTavixImage* m_Image = nullptr;
    std::vector<uint8_t> m_Loaded; // the record the fields show
    int m_Selected = 0;
    bool m_Loading = false;
    QString m_LoadedName, m_LoadedComment; // what the text fields were given

    QLabel* m_Count;
    QLineEdit* m_Name;
    QLabel* m_Size;
    QSpinBox *m_CenterX, *m_CenterY, *m_DefaultX, *m_DefaultY;
    QTableWidget* m_HotSpots;
    QLineEdit* m_Comment;
    QSpinBox *m_SubType, *m_Packed, *m_Start, *m_NumColours;
    QCheckBox* m_Attr[5];
    QWidget* m_Body;
};
