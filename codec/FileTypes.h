#pragma once
// The codec library's file types, one row per driver and extension, and the
// rule that turns them into a file dialog's filter list. Both are plain data
// so the dialog code only draws what these compute.

#include "tavix/records.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

struct CTavixFileType {
    int32_t driver;
    char extension[8]; // without its dot
    char description[32];
};
static_assert(sizeof(CTavixFileType) == 44);

class CTavixFileTypesList {
  public:
    // Reads every driver's description from the bound library.
    void Build();
    // The same from descriptions already at hand (index = driver).
    void BuildFrom(std::span<const TavixAbout> drivers);

    int GetCount() const { return static_cast<int>(m_rows.size()); }
    const CTavixFileType& operator[](int i) const { return m_rows[static_cast<size_t>(i)]; }
    // The driver's first extension (without its dot), or "" when it has none.
    std::string FirstExtension(int driver) const;
    // The driver owning the extension `path` ends in (any case), -1 when the
    // name has no extension or none a driver owns.
    int DriverOfPath(const std::string& path) const;

  private:
    std::vector<CTavixFileType> m_rows;
};

struct TavixFilterEntry {
    std::string text;    // "tga - Targa"
    std::string pattern; // "*.tga"
    int driver;          // -1 for "All Files (*.*)"
};

struct TavixFileFilter {
    std::vector<TavixFilterEntry> entries;
    int initialIndex = 1; // 1-based
};

// The filter list of the codec file dialog for `rows`: one entry per row,
// then "All Files (*.*)" in open mode, and the entry to start on for the
// initial path and driver (-1 for none).
TavixFileFilter TavixBuildFileFilter(const CTavixFileTypesList& rows, bool openMode,
                                     const std::string& initialPath, int initialDriver);

// The driver behind a 1-based filter index, -1 for "All Files" or out of range.
int TavixFilterDriver(const TavixFileFilter& filter, int index);
