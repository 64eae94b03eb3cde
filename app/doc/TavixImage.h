#pragma once
// CTavixImage: one image ("shape") of a document. The bitmap holds the
// pixels; a private copy of the codec's information record holds everything
// else a shape file keeps per image (name, comment, points, hot spots,
// packing, colour counts, channel depths, palette).
//
// Invariants:
// - the bitmap's width, height and bit count are the record's width,
//   height and bufferbpp;
// - for bufferbpp 8 or less the record palette and the bitmap colour table
//   are byte-for-byte equal; every palette setter writes both;
// - the record's size field is the size of the copy; records are copied
//   whole, tail included.
//
// Allocation failures raise CMemoryException.

#include "codec/FrameIO.h"
#include "imaging/module/module.h"
#include "mfx/DIB.h"
#include "mfx/Geometry.h"
#include "tavix/records.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CTavixImage : public CDIB {
  public:
    // Takes m_OnWorksheet from the profile ("CTavixImage", "m_OnWorksheet",
    // default 0). The image has no record until Create or SetInformation.
    CTavixImage();
    ~CTavixImage() override;

    // A fresh record (size 10864, version 200, the given depth as bpp and
    // bufferbpp, quality 100, 8 bits per channel). Depth 8 gets 256 colours
    // of a deliberately gaudy palette, so that an unset palette shows. The
    // pixels are zero. Returns true; throws CMemoryException on failure.
    bool Create(int width, int height, int bpp) override;
    // The bitmap copy, then the colour table written back through
    // SetPalette so that the record agrees again.
    bool CopyPixels(const CDIB& from) override;
    // Installs a copy of `info` (by its size field) and a zeroed bitmap of
    // its width, height and bufferbpp; for bufferbpp 8 the record palette
    // becomes the colour table.
    virtual void SetInformation(const TavixInfo& info);
    // Copies the rows of an image entry (record, pixel base, row pitch)
    // into the bitmap: the record's height rows, each up to the pitch.
    virtual void LoadPixelRows(const ImageEntry& entry);

    // The record, for reading; a zero record before one is installed.
    const TavixInfo* GetInfo() const;
    // The record, for writing: sets the modified mark. Null before one is
    // installed.
    TavixInfo* GetInfoForWrite();
    // The modified mark: set by GetInfoForWrite, cleared by the document
    // after the image was written to a file or conformed.
    bool TakeModifiedMark();
    uint8_t GetModifiedMark() const { return m_Modified; }
    void SetModifiedMark(uint8_t mark) { m_Modified = mark; }
    bool HasInfo() const { return m_Info != nullptr; }
    int32_t GetInfoSize() const { return m_InfoSize; }

    CSize GetSize() const;
    int GetBpp() const;
    CPoint GetCenterPoint() const;
    CPoint GetDefaultPoint() const;
    void SetDefaultPoint(CPoint point);
    // Where the image sits on the worksheet: its default point and size.
    CRect GetPlacementRect() const;
    int GetHotSpotCount() const;
    CPoint GetHotSpot(int index) const; // (0, 0) outside the table
    std::string GetName() const;
    void SetName(const std::string& name);

    // The 256 record palette entries.
    void GetPalette(TavixColour out[256]) const;
    void SetPaletteEntry(int index, const TavixColour& colour);
    // Entries 0 .. GetColorCount()-1 of `colours`.
    void SetPalette(const TavixColour* colours);

    // 0xAARRGGBB at (x, y): the record palette entry of the stored index for
    // palette images, the stored word otherwise; 0 outside the image.
    uint32_t GetPixelValue(int x, int y) const;
    // The stored index for palette images; 0 for deeper ones and outside.
    int GetIndex(int x, int y) const;

    // "x,y ; x,y ; ..." in table order; empty when there are none.
    std::string GetHotSpotsText() const;
    // Reads pairs separated by ';' (at most 1024). A segment without
    // numbers repeats the previous pair; only the end of the text, a
    // missing ';' or the limit stops the scan.
    void SetHotSpotsFromText(const std::string& text);

    // A new image made by module `module` from this one with `count` values.
    // A bad module index shows "The filter ID is bad, or the selected filter
    // is unavailable." and gives null; a module failure gives null.
    // Two-image modules (Blend) get `second` as their second image entry.
    std::unique_ptr<CTavixImage> RunModule(int module, const ModuleValue* values, int count,
                                           const CTavixImage* second = nullptr) const;
    // An identical image, made by the null module.
    std::unique_ptr<CTavixImage> Duplicate() const;
    // Runs the module over this image's own record and pixels.
    bool RunModuleInPlace(int module, const ModuleValue* values, int count);

    // This image as the module framework and the codec see it.
    ImageEntry GetEntry() const;
    // A codec frame and back: how tools build images from a read file and
    // write them again.
    static std::unique_ptr<CTavixImage> FromFrame(const TavixFrame& frame);
    TavixFrame ToFrame() const;

    int m_OnWorksheet = 0;

  private:
    void InstallRecord(const TavixInfo& info);

    std::unique_ptr<uint32_t[]> m_Info; // the record, m_InfoSize bytes
    int32_t m_InfoSize = 0;
    uint8_t m_Modified = 0;
};
