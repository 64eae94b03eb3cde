#pragma once
// CImageListModel: the shape list's Qt model. It holds no data of its own:
// every cell is asked of the document's image records. The Name column is
// editable in place; an edit becomes a rename command on the document.

#include <QAbstractTableModel>

class CTavixDoc;

class CImageListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    explicit CImageListModel(CTavixDoc* doc, QObject* parent = nullptr);

    // The row count as the view last set it from the document.
    void SetRowCount(int rows);
    // Repaints the cells without changing the rows.
    void RefreshCells();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override;

  private:
    CTavixDoc* m_Doc;
    int m_Rows = 0;
};
