#pragma once
// "Create Mip Maps" (35330): gives each selected image a chain of reduced
// copies, each half the size of the one before, as further images of the
// document: named "mm1", "mm2" ..., marked as mip-map levels (attribute bit
// 0x200, which the source gets too) and inserted directly after their
// source. A level whose side would drop below one pixel is not made, so a
// thin image gets fewer levels than asked.
//
// The levels come from the image library's Mipmap module, each from the
// level before it. True-colour images are filtered with Lanczos3; for
// palette images CMipMapMeth asks how (kMipMapMethods). Undo removes the
// levels and clears the marks it set; Redo makes them again.

#include "app/doc/CRange.h"
#include "app/doc/Command.h"
#include "app/doc/UserInterface.h"

#include <iterator>
#include <vector>

class CTavixImage;

// "Number of mip maps to create:", 1 to 100.
struct CMipMapDlgData : CDialogData {
    int m_Count = 1;
    const char* GetDialogName() const override { return "CMipMapDlg"; }
    std::vector<CDialogField> GetFields() override;
};

// How the levels of palette images are made (section "CMipMapMeth", value
// "m_Method").
struct CMipMapMethod {
    const char* m_Name;
    int m_ModuleMethod; // the Mipmap module's Method value
};
// Halfsize averages each 2 x 2 block and Scale picks pixels; both keep the
// palette. The shared palette works in true colour with Lanczos3 and maps
// every level back onto the source's palette.
inline constexpr CMipMapMethod kMipMapMethods[] = {
    {"Halfsize (average 2 x 2 pixels)", 1},
    {"Scale (pick pixels)", 0},
    {"Shared palette (filter in true colour)", 3},
};
inline constexpr int kMipMapMethodCount = static_cast<int>(std::size(kMipMapMethods));

struct CMipMapMethData : CDialogData {
    int m_Method = 0; // index in kMipMapMethods
    const char* GetDialogName() const override { return "CMipMapMeth"; }
    std::vector<CDialogField> GetFields() override;
};

class CMipMapCmd : public CCommand {
  public:
    enum { kMinCount = 1, kMaxCount = 100 };

    // Reads "CMipMapCmd"/"m_Count" (default 1) and "CMipMapMeth"/"m_Method".
    CMipMapCmd();
    // Asks the count, and the method when a palette image is selected;
    // Cancel in either dialog changes nothing.
    bool Init(CTavixDoc* doc) override;
    void Do() override;
    void Undo() override;

    int GetCount() const { return m_Count; }

  private:
    // Inserts the levels of the image at `position`; returns how many.
    int MakeLevels(int position);

    int m_Count;
    int m_Method;
    CRange m_Range;
    std::vector<CTavixImage*> m_Levels;                      // in the document while done
    std::vector<std::pair<CTavixImage*, uint32_t>> m_Marked; // source, attributes before
};

class CMipMapInfo : public CCommandInfo {
  public:
    CMipMapInfo();
    std::vector<std::string> GetSettingKeys() const override;
};
