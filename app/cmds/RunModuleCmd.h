#pragma once
// "Run Module...": any module of the imaging library over the selected
// images, with the values its descriptor declares. The dialog is built from
// the descriptor, so a module gets its controls without a dialog of its own.
//
// The values of each module travel as texts, one per descriptor slot, in
// the forms a user types and zytool reads: integers in decimal, reals,
// choice names, masks and colours in hex, expressions as they stand. The
// texts of one module are kept together in one setting (section
// "CRunModuleDlg", key: the module's name) as a comma-separated list in
// which a comma or backslash inside a value is escaped with a backslash;
// "m_Module" holds the module chosen last.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"
#include "imaging/module/module.h"

#include <map>
#include <string>
#include <vector>

// How the dialog shows one value of a module.
enum class CModuleControl { Integer, Real, Check, Choice, Mask, Colour, Text, Handle };

struct CModuleValueDesc {
    std::string m_Name; // the descriptor's, "Value n" when it gives none
    CModuleControl m_Kind = CModuleControl::Integer;
    double m_Min = 0; // for masks and colours 0 .. 0xFFFFFFFF
    double m_Max = 0;
    double m_Default = 0;
    std::vector<std::string> m_Choices; // names of values 0, 1, 2 ... (Choice)
};

struct CModuleDesc {
    int m_Index = 0;
    std::string m_Name;        // the lookup name ("Flip")
    std::string m_Description; // "Flip", "Gausian Blur"
    int m_MinImages = 1;
    int m_Images = 1;
    bool m_RunsAlone = true; // gives a result without a second image
    std::vector<CModuleValueDesc> m_Values;

    // Why the dialog cannot run this module, or empty when it can.
    std::string UnusableReason() const;
    // A remark on how the module runs here (an optional second image that is
    // not given), or empty.
    std::string Remark() const;
    // False for modules that must not run at every edit (they start an
    // outside program).
    bool CanPreview() const;
    // The default text of every slot.
    std::vector<std::string> DefaultTexts() const;
};

// The descriptor of module `index` in the dialog's terms; the module that
// was current stays current.
CModuleDesc DescribeModule(int index);
// Every module of the table, in table order.
const std::vector<CModuleDesc>& AllModuleDescs();
// The module named `name` (ASCII case ignored), or null.
const CModuleDesc* FindModuleDesc(const std::string& name);

// The text of a value for its control, and back.
std::string ModuleValueText(const CModuleValueDesc& desc, double value);
// Reads `text` for `desc`: the number it stands for (choice names, hex and
// decimal integers, reals). Empty on success, else why not, naming the
// value and its range: "Amount: 300 is outside 1 to 255".
std::string ParseModuleValue(const CModuleValueDesc& desc, const std::string& text, double& value);

// The comma-separated setting of a module's texts, and back. Missing
// trailing texts are left for the caller to default.
std::string JoinModuleTexts(const std::vector<std::string>& texts);
std::vector<std::string> SplitModuleTexts(const std::string& joined);

// The texts of `desc` from a setting: the stored ones where they read,
// defaults for the rest (a stored text that no longer fits gives way to
// the default, so an old setting never blocks the dialog).
std::vector<std::string> ModuleTextsFromSetting(const CModuleDesc& desc,
                                                const std::string& setting);

// The value slots for `texts`. Text slots point into `texts`, which must
// outlive the run; handle slots are null. Empty `error` on success.
std::vector<ModuleValue> ModuleValuesFromTexts(const CModuleDesc& desc,
                                               const std::vector<std::string>& texts,
                                               std::string& error);

// The dialog's values: the chosen module and the texts of every module
// whose values were stored or edited.
struct CRunModuleDlgData : CDialogData {
    std::string m_Module;                          // the module's name
    std::map<std::string, std::string> m_Settings; // module name -> joined texts

    const char* GetDialogName() const override { return "CRunModuleDlg"; }
    // m_Module and one text field per module (key: its name), so that
    // zytool's --set CRunModuleDlg/Flip=Vertical reaches them.
    std::vector<CDialogField> GetFields() override;
    std::string Validate() const override;

    // The chosen module's texts (defaults where none are stored).
    std::vector<std::string> Texts() const;
    void SetTexts(const std::string& module, const std::vector<std::string>& texts);
    // From and to the settings store.
    void Load();
    void Save() const;
};

// The command: the chosen module over each selected image through the
// filter-command runner, named after the module for Undo.
class CRunModuleCmd : public CUndoableCmd {
  public:
    CRunModuleCmd();
    // Asks the module and its values (dialog with a preview of the focused
    // image), stores them and submits.
    bool Init(CTavixDoc* doc) override;
    // Runs `module` with `texts` without a dialog.
    bool Init(CTavixDoc* doc, const std::string& module, const std::vector<std::string>& texts);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    std::vector<std::string> m_Texts;
    std::vector<ModuleValue> m_Values;
};
