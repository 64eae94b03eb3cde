#pragma once
// "Run Module": the list of every imaging module and, for the chosen one, a
// page of controls built from its descriptor (spin boxes, check boxes,
// lists, hex masks with a check box per channel, colour buttons, expression
// lines) beside the before/after preview of the focused image.

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

struct CRunModuleDlgData;
class CPreviewPane;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QScrollArea;
class QTreeWidget;
class QWidget;

class CRunModuleDlg : public QDialog {
  public:
    // Edits `data` in place (the caller drops it on Cancel).
    CRunModuleDlg(CRunModuleDlgData& data, QWidget* parent);

    // Chooses a module as a click in the list would.
    void ChooseModule(const std::string& name);
    // The texts the controls hold now, one per slot of the chosen module.
    std::vector<std::string> CurrentTexts() const;

  private:
    void BuildPage();
    void Changed(); // controls -> data, then preview
    void done(int result) override;

    CRunModuleDlgData& m_Data;
    QTreeWidget* m_List;
    QScrollArea* m_Scroll;
    QFormLayout* m_Form = nullptr;
    QLabel* m_Title;
    QLabel* m_Note;
    QDialogButtonBox* m_Buttons;
    CPreviewPane* m_Preview = nullptr;
    // One reader per slot, giving the slot's text as the controls hold it.
    std::vector<std::function<std::string()>> m_Readers;
    std::string m_PageModule; // the module whose page is shown
    bool m_Loading = false;
};

// Registers the dialog with the window interface.
void RegisterRunModuleDialog();
