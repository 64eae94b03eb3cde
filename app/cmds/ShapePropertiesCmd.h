#pragma once
// The shape properties family (35340, "Shape Properties"): edits the
// record of the selected images (name, centre, default point, which is the
// worksheet position, hot spots, comment, record type, packing, attribute
// flags, start colour and colour count). Only the fields the user changed
// are written, to every selected image, so editing several images at once
// never copies one image's other fields onto the rest. One command per
// change, undone by putting the old records back (pixels and palettes are
// never touched).
//
// Without a window CShapePropertiesDlg shows the focused image's values;
// every field whose value differs afterwards counts as changed. The
// editor's properties window builds the change itself and starts the same
// command with it.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"
#include "mfx/Geometry.h"

#include <optional>
#include <string>
#include <vector>

class CTavixImage;
struct TavixInfo;

// The fields one edit changes; unset fields stay as each image has them.
struct CShapeEdit {
    std::optional<std::string> m_Name;
    std::optional<std::string> m_Comment;
    std::optional<std::string> m_HotSpots; // "x,y ; x,y"
    std::optional<int> m_CenterX, m_CenterY;
    std::optional<int> m_DefaultX, m_DefaultY;
    std::optional<int> m_SubType, m_Packed;
    std::optional<int> m_StartColour, m_NumColours;
    uint32_t m_AttrSet = 0;   // attribute bits to set
    uint32_t m_AttrClear = 0; // attribute bits to clear

    bool IsEmpty() const;
    // Writes the changed fields into `image`'s record.
    void ApplyTo(CTavixImage& image) const;
};

struct CShapePropertiesDlgData : CDialogData {
    std::string m_Name, m_Comment, m_HotSpots;
    int m_CenterX = 0, m_CenterY = 0, m_DefaultX = 0, m_DefaultY = 0;
    int m_SubType = 0, m_Packed = 0, m_StartColour = 0, m_NumColours = 0;
    int m_Mip = 0, m_Rotated = 0, m_Transposed = 0, m_Dot3 = 0, m_Embm = 0;
    const char* GetDialogName() const override { return "CShapePropertiesDlg"; }
    std::vector<CDialogField> GetFields() override;
    void Read(const CTavixImage& image);
    // The fields that differ from `before`.
    CShapeEdit Changes(const CShapePropertiesDlgData& before) const;
};

class CShapePropertiesCmd : public CCommand {
  public:
    CShapePropertiesCmd();
    // Asks in the dialog, unless an edit was preset.
    bool Init(CTavixDoc* doc) override;
    // The change to make, known before the command starts (the properties
    // window); Init then asks nothing.
    void PresetEdit(const CShapeEdit& edit) {
        m_Edit = edit;
        m_bPreset = true;
    }
    // The images to edit instead of the selection (a centre dragged on the
    // worksheet belongs to one image).
    void PresetTargets(const CRange& targets) {
        m_Range = targets;
        m_bPresetTargets = true;
    }
    void Do() override;
    void Undo() override;
    void Redo() override;

  private:
    void Put(const std::vector<std::vector<uint8_t>>& records);

    CShapeEdit m_Edit;
    bool m_bPreset = false;
    bool m_bPresetTargets = false;
    CRange m_Range;
    std::vector<int> m_Positions;
    std::vector<std::vector<uint8_t>> m_Before, m_After;
};

class CShapePropertiesInfo : public CCommandInfo {
  public:
    CShapePropertiesInfo();
    std::vector<std::string> GetSettingKeys() const override;
};
