#pragma once
// The before/after preview of a parameter dialog: the focused image as it
// is and as the dialog's current values would make it. Every dialog that
// offers a preview uses this one widget; it never touches the document.
// The result is made on a copy of the image and thrown away when the
// dialog closes, so Cancel leaves no trace and OK runs the real command.

#include <QWidget>

#include <functional>
#include <memory>

class CTavixImage;
class QLabel;

class CPreviewPane : public QWidget {
    Q_OBJECT

  public:
    // Makes the filtered image of the source, or null when the values do
    // not give one (the pane then says so).
    using Filter = std::function<std::unique_ptr<CTavixImage>(const CTavixImage&)>;

    // `source` must outlive the pane (the focused image of the document,
    // which the modal dialog leaves alone).
    CPreviewPane(const CTavixImage& source, Filter filter, QWidget* parent = nullptr);
    ~CPreviewPane() override;

    // Runs the filter with the dialog's values as they are now.
    void Refresh();
    // The after image as shown, for tests (null before the first Refresh or
    // when the filter failed).
    const CTavixImage* GetAfter() const { return m_After.get(); }

  private:
    void Show(QLabel* label, const CTavixImage* image);

    const CTavixImage& m_Source;
    Filter m_Filter;
    std::unique_ptr<CTavixImage> m_After;
    QLabel* m_BeforeLabel;
    QLabel* m_AfterLabel;
};
