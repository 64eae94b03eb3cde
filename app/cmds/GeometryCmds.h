#pragma once
// The geometry families that turn, mirror and interleave images without a
// change of scale: the quarter turns and the Rotate toggle, Transpose,
// Column Swap, De-Interlace and rotation by any angle ("Transform
// Numerically"). Resize and the canvas commands are in SizeCmds.h.
//
// The toggle (35296) and Transpose (35295) record what they did in the
// image's attribute word (0x800 rotated, 0x1000 transposed) when the
// document's format keeps that word, so that a game can undo the turn at
// load time; elsewhere they are plain turns.

#include "app/doc/UndoableCmd.h"
#include "app/doc/UserInterface.h"

#include <string>

class CRotateCmd : public CUndoableCmd {
  public:
    // The angle codes of the "rot" module.
    enum Code { Back = -1, Clockwise = 1, Half = 2, CounterClockwise = 3 };

    CRotateCmd();
    using CUndoableCmd::Init;
    // `toggle`: the Rotate toggle (the code is then chosen per image).
    virtual bool Init(CTavixDoc* doc, int code, bool toggle);
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    int m_Code = Clockwise;
    bool m_bToggle = false;
    bool m_bKeepsFlag = false;
};

class CTransposeCmd : public CUndoableCmd {
  public:
    CTransposeCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

  private:
    bool m_bKeepsFlag = false;
};

// Swaps the bytes of columns 0 and 1, 2 and 3 ... of indexed images (a
// nibble-order fix for 4-bit art stored one index per byte); deeper images
// are copied unchanged. The "rect" module is named only for the format
// check and never run.
class CRowswapCmd : public CUndoableCmd {
  public:
    CRowswapCmd();
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
};

struct CDeInterlaceDlgData : CDialogData {
    int m_Field = 0; // 0 odd, 1 even: the field to eliminate
    const char* GetDialogName() const override { return "CDeInterlaceDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CDeInterlaceCmd : public CUndoableCmd {
  public:
    CDeInterlaceCmd();
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;
    int GetField() const { return m_Field; }

  private:
    int m_Field = 0;
};

struct CRotateArbitraryDlgData : CDialogData {
    double m_Angle = 0;  // degrees, -360 .. 360
    int m_ClockWise = 1; // 1 clockwise, 0 counter-clockwise
    int m_Interplolate = 1;
    const char* GetDialogName() const override { return "CRotateArbitraryDlg"; }
    std::vector<CDialogField> GetFields() override;
};

class CRotateArbitraryCmd : public CUndoableCmd {
  public:
    // Degrees to radians with the factor shape files were always turned
    // with (a hair above pi/180); kept so that results match old files.
    static constexpr double kDegreeFactor = 0.017453292522222223;

    // Reads "m_AngleString", "m_ClockWise" and "m_Interplolate".
    CRotateArbitraryCmd();
    // Shows the dialog; on OK saves the settings, takes the fill colours,
    // converts the angle and submits.
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    double GetRadians() const { return m_Radians; }

  private:
    std::string m_AngleString = "0";
    int m_ClockWise = 1;
    int m_Interplolate = 1;
    double m_Radians = 0;
    uint32_t m_FillIndex = 0;
    uint32_t m_FillArgb = 0;
};
